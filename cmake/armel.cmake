# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# 32-bit ARM without a floating-point unit (ARMv5).
set(VELK_TRIPLET arm-linux-gnueabi)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(VELK_EMULATOR qemu-arm-static)
include(${CMAKE_CURRENT_LIST_DIR}/cross/toolchain.cmake)
