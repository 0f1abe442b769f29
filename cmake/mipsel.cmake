# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# 32-bit MIPS, little-endian.
set(VELK_TRIPLET mipsel-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR mips)
set(VELK_EMULATOR qemu-mipsel-static)
include(${CMAKE_CURRENT_LIST_DIR}/cross/toolchain.cmake)
