# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

include $(sort $(wildcard $(BR2_EXTERNAL_VELK_PATH)/package/*/*.mk))
