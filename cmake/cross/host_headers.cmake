# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# Defines an interface target for a library of headers that this machine has. Its folder alone is linked
# into the build: /usr/include also has the headers of this machine's C library.
function(velk_host_headers target folder)
  if(NOT EXISTS /usr/include/${folder} OR TARGET ${target})
    return()
  endif()
  set(include ${CMAKE_BINARY_DIR}/host-headers)
  file(MAKE_DIRECTORY ${include})
  file(CREATE_LINK /usr/include/${folder} ${include}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${include})
endfunction()
