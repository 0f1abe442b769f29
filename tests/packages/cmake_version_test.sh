#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# cmake_version_test.sh SOURCE - the product can be configured by CMake 3.18: no CMake file of it has a command, a
# generator expression, a property or an option that came later, with 3.19 to 3.25.
set -u
export LC_ALL=C
source=$1
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/../abi/check.sh"
cd "$source" || exit

check 'the least version' 'cmake_minimum_required(VERSION 3.18...3.25)' "$(grep '^cmake_minimum' CMakeLists.txt)"
commands='cmake_path|cmake_language *\( *DEFER|block|endblock|cmake_host_system_information *\(.*DISTRIB'
modes='string *\( *JSON|file *\( *(CHMOD|CHMOD_RECURSE|REAL_PATH|COPY_FILE|ARCHIVE_CREATE)|list *\(.*PREPEND_IF'
modes+='|return *\( *PROPAGATE|separate_arguments *\(.*PROGRAM|file *\( *GENERATE.*(NEWLINE_STYLE|TARGET)'
words='FILE_SET|IMPORTED_RUNTIME_ARTIFACTS|RUNTIME_DEPENDENCIES|RUNTIME_DEPENDENCY_SET|COMMAND_ERROR_IS_FATAL'
words+='|PROJECT_IS_TOP_LEVEL|CMAKE_COMPILE_WARNING_AS_ERROR|PATH_EQUAL|cxx_std_23|cxx_std_26'
expressions='\$<(TARGET_RUNTIME_DLLS|LINK_LIBRARY|LINK_GROUP|PATH|CONFIG:[^>]*,)'
later="^[^#]*(\\b($commands) *\\(|$modes|\\b($words)\\b|$expressions|CMAKE_[A-Z_]*_LINKER_LAUNCHER)"
mapfile -t files < <(find cmake -type f && ls CMakeLists.txt {lib,velkctl,sandbox,sandbox/wland,packaging,web}/CMakeLists.txt)
check 'features of a later CMake' '' "$(grep -nE "$later" "${files[@]}")"
check 'subdirectories of the product' 'lib packaging sandbox sandbox/wland velkctl web' \
    "$(sed -n '/^if(BUILD_TESTING)$/,$d; s/^ *add_subdirectory(\([^ )]*\).*/\1/p' CMakeLists.txt | sort | paste -sd ' ')"

# The check itself.
for line in 'cmake_path(GET a FILENAME b)' '  string(JSON a GET b c)' 'block()' 'install(TARGETS velk FILE_SET HEADERS)' \
    'return(PROPAGATE a)' 'separate_arguments(a UNIX_COMMAND PROGRAM b)' 'file(GENERATE OUTPUT a CONTENT b TARGET c)' \
    'add_custom_command(POST_BUILD COMMAND $<TARGET_RUNTIME_DLLS:a>)'; do
    check "found: $line" 1 "$(grep -cE "$later" <<<"$line")"
done
finish
