# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# GoogleTest for the other machine, from the sources that the distribution packages with it.
set(sources /usr/src/googletest)
if(NOT EXISTS ${sources}/googlemock/src/gmock-all.cc)
  set(GTest_FOUND FALSE)
  return()
endif()
find_package(Threads REQUIRED)
if(NOT TARGET GTest::gmock)
  add_library(gmock STATIC EXCLUDE_FROM_ALL
    ${sources}/googletest/src/gtest-all.cc ${sources}/googlemock/src/gmock-all.cc)
  target_include_directories(gmock
    SYSTEM PUBLIC ${sources}/googletest/include ${sources}/googlemock/include
    PRIVATE ${sources}/googletest ${sources}/googlemock)
  target_compile_options(gmock PRIVATE -w)
  target_link_libraries(gmock PUBLIC Threads::Threads)
  add_library(GTest::gmock ALIAS gmock)
  add_library(GTest::gtest ALIAS gmock)
endif()
