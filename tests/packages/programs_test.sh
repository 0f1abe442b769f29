#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# programs_test.sh BUILD FOLDER CC CXX - programs build and run with the installed files alone: in C with
# pkg-config, in C++ with CMake's package. The files were installed with DESTDIR and then moved.
set -u
build=$1 root=$2 cc=$3 cxx=$4
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/../abi/check.sh"

rm -rf "$root"
DESTDIR=$root/staged cmake --install "$build" >/dev/null || exit 1
library=$(find "$root/staged" -name libvelk.so.1 -printf '%P\n')
generator=$(sed -n 's/^CMAKE_GENERATOR:INTERNAL=//p' "$build/CMakeCache.txt")
prefix=$(sed -n 's/^CMAKE_INSTALL_PREFIX:PATH=//p' "$build/CMakeCache.txt")
moved="$root/moved here"
mv "$root/staged$prefix" "$moved"
libraries=$moved/$(dirname "${library#"${prefix#/}/"}")
run() { env LD_LIBRARY_PATH="$libraries" "$@"; }

export PKG_CONFIG_PATH=$libraries/pkgconfig
# shellcheck disable=SC2016 # the marks of an example, not commands
sed -n '/^```c$/,/^```$/ { /^```/ !p }' "$here/../../README.md" >"$root/readme.c"
cp "$here/../abi/c99_client.c" "$here/../../examples/address.c" "$root"
for name in libvelk velk; do
    # pkg-config writes a backslash before a blank of the path.
    eval "flags=($(pkg-config --cflags --libs "$name"))"
    for program in c99_client readme address; do
        # shellcheck disable=SC2154 # set by eval
        "$cc" -std=c99 -Wall -Wextra -Werror -o "$root/$program" "$root/$program.c" "${flags[@]}" || exit 1
    done
    run "$root/c99_client" || check "a program with the flags of $name" 0 $?
    "$cxx" -std=c++20 -Wall -Wextra -Werror -o "$root/dns" "$here/../../examples/dns.cpp" "${flags[@]}" || exit 1
    check "a C++ program with the flags of $name" "dns: '1.2' is not an IPv4 address" "$(run "$root/dns" 1.2 2>&1)"
done
version=$(pkg-config --modversion libvelk)

# A tree with the prefix /usr below another root, and one with a libdir of its own.
mkdir "$root/usr"
pkg_config_of() { # pkg_config_of OPTION...
    rm -rf "$root/build"
    cmake -G "$generator" -S "$here/../.." -B "$root/build" -DBUILD_TESTING=OFF -DVELK_TOOLS=OFF -DVELK_SANDBOX=OFF \
        -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_INSTALL_LIBDIR=lib "$@" >/dev/null || exit 1
    cp "$root/build/packaging/libvelk.pc" "$root/usr"
}
pkg_config_of -DCMAKE_INSTALL_PREFIX=/usr
export PKG_CONFIG_PATH=$root/usr
check 'flags with the prefix /usr' '-lvelk' "$(pkg-config --cflags --libs libvelk | xargs)"
check 'flags below another root' '-I/staged/usr/include -L/staged/usr/lib -lvelk' \
    "$(PKG_CONFIG_SYSROOT_DIR=/staged pkg-config --cflags --libs libvelk | xargs)"
pkg_config_of -DCMAKE_INSTALL_PREFIX=/opt/velk -DCMAKE_INSTALL_LIBDIR=/elsewhere/lib
check 'a libdir of its own' '/elsewhere/lib' "$(pkg-config --variable=libdir libvelk)"
PKG_CONFIG_PATH=$libraries/pkgconfig

configure() { # configure VERSION COMPONENTS
    rm -rf "$root/cmake"
    cmake -G "$generator" -S "$here/cmake_program" -B "$root/cmake" -DCMAKE_PREFIX_PATH="$moved" \
        -DCMAKE_CXX_COMPILER="$cxx" -DWANTED_VERSION="$1" -DWANTED_COMPONENTS="$2" 2>&1
}
refused() { # refused TEXT VERSION COMPONENTS
    local log
    log=$(configure "$2" "$3") && check "find_package of version $2 with $3" refused found
    grep -qF "$1" <<<"$(tr -s ' \n' ' ' <<<"$log")" || check "find_package of version $2 with $3" "$1" "$log"
}
refused 'compatible with requested version "2.0"' 2.0 library
refused 'compatible with requested version "1.9"' 1.9 library
refused 'the component teapot of libvelk is not installed' 1.0 'library;teapot'
mv "$moved/bin/velk-sandbox" "$root"
refused 'the component sandbox of libvelk is not installed' 1.0 'library;tools;sandbox'
mv "$root/velk-sandbox" "$moved/bin"

if configure 1.0 'library;development;tools;sandbox' >"$root/log" && cmake --build "$root/cmake" >>"$root/log" 2>&1; then
    # The programs find the library without help.
    check 'a C++ program' "$version -4 a\\/b" "$("$root/cmake/program")"
    grep -q 'eth0.address' <<<"$(cmake --build "$root/cmake" --target list)" ||
        check 'velk::velkctl' 'a list of settings' "$(cmake --build "$root/cmake" --target list)"
else
    check 'building with find_package' built "$(cat "$root/log")"
fi
check 'velkctl' "velkctl $version" "$("$moved/bin/velkctl" --version)"
finish
