# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# The common part of the toolchain files: Debian's cross compiler of VELK_TRIPLET. VELK_EMULATOR runs its
# programs; the machine itself does if it is empty.
set(CMAKE_SYSTEM_NAME Linux)

find_program(VELK_CROSS_CXX ${VELK_TRIPLET}-g++)
if(NOT VELK_CROSS_CXX)
  message(FATAL_ERROR " ${VELK_TRIPLET}-g++ is missing: apt-get install g++-${VELK_TRIPLET}")
endif()
set(CMAKE_C_COMPILER ${VELK_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${VELK_TRIPLET}-g++)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)  # no notes about older compilers

# Only the C and C++ libraries are there. Everything else comes from the folder of this file.
set(CMAKE_FIND_ROOT_PATH /usr/${VELK_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
foreach(package CLI11 GTest nlohmann_json)
  set(${package}_DIR ${CMAKE_CURRENT_LIST_DIR})
endforeach()

set(libraries /usr/${VELK_TRIPLET}/lib)
if(VELK_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/${VELK_EMULATOR} -L /usr/${VELK_TRIPLET})
else()
  set(CMAKE_CROSSCOMPILING_EMULATOR ${libraries}/ld-linux.so.2 --library-path ${libraries})
endif()
