# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

include(${CMAKE_CURRENT_LIST_DIR}/host_headers.cmake)
velk_host_headers(CLI11::CLI11 CLI)
if(NOT TARGET CLI11::CLI11)
  set(CLI11_FOUND FALSE)
endif()
