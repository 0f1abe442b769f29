# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# 32-bit x86. This machine runs its programs itself.
set(VELK_TRIPLET i686-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(VELK_EMULATOR "")
include(${CMAKE_CURRENT_LIST_DIR}/cross/toolchain.cmake)
