# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

include(${CMAKE_CURRENT_LIST_DIR}/host_headers.cmake)
velk_host_headers(nlohmann_json::nlohmann_json nlohmann)
if(NOT TARGET nlohmann_json::nlohmann_json)
  set(nlohmann_json_FOUND FALSE)
endif()
