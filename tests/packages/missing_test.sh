#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# missing_test.sh SOURCE FOLDER - a missing program or package is one line that says how to get it. Configures
# in FOLDER.
set -u
export LC_ALL=C
source=$1 root=$2
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/../abi/check.sh"

# A folder of the only programs: those that each script runs before it looks for others.
rm -rf "$root"
mkdir -p "$root/programs"
for program in bash sh env dirname id realpath sed; do
    ln -s "$(command -v "$program")" "$root/programs"
done
with() { # with PROGRAMS COMMAND... - as on a machine with these programs, too
    local program
    for program in $1; do
        ln -sf /bin/true "$root/programs/$program"
    done
    env PATH="$root/programs" "${@:2}" 2>&1
    for program in $1; do
        rm "$root/programs/$program"
    done
}
lacks() { # lacks SCRIPT PROGRAM PACKAGE PROGRAMS [ARGUMENT...]
    check "$1 without $2" "$1: $2 is missing. fix: apt-get install $3, or run scripts/setup" \
        "$(with "$4" "$source/scripts/$1" "${@:5}")"
}
lacks build cmake cmake ''
lacks build ninja ninja-build cmake
lacks build g++ g++ 'cmake ninja'
lacks build clang++ clang 'cmake ninja g++' fuzz
check 'build for another machine without its compiler' \
    'build: mips-linux-gnu-g++ is missing. fix: apt-get install g++-mips-linux-gnu, or run scripts/setup cross' \
    "$(with 'cmake ninja' "$source/scripts/build" mips)"
lacks format clang-format clang-format ''
lacks abi abidw abigail-tools ''
lacks abi g++ g++ 'abidw cmake ninja'
for script in plain-language folder-graph declared-programs coverage mutate includes; do
    lacks "$script" python3 python3 ''
done
if [ "$(id -u)" -eq 0 ]; then
    lacks test-packages dpkg-buildpackage dpkg-dev ''
    lacks test-packages dh_python3 dh-python 'dpkg-buildpackage dh'
    lacks test-packages mmdebstrap mmdebstrap 'dpkg-buildpackage dh dh_python3 lintian'
    check "test-packages with another's folder" \
        "test-packages: $root has other files. fix: name an empty or new folder" \
        "$("$source/scripts/test-packages" "$root" 2>&1)"
    # Without the right to make namespaces.
    for script in test-packages 'as-fresh true'; do
        read -ra command <<<"$script"
        check "$script in a container" \
            "${command[0]}: this root may make no namespaces. fix: start the container with --privileged" \
            "$(setpriv --bounding-set -sys_admin "$source/scripts/${command[0]}" "${command[@]:1}" 2>&1)"
    done
fi
line='setup: this system has no apt-get. fix: install the equivalent of these packages of Debian 12:'
check 'setup without apt-get' "$line g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libcrypt-dev busybox" \
    "$(with '' "$source/scripts/setup" demo)"

# CMake prints a line that names the place, and this one.
lacks_package() { # lacks_package PACKAGE MESSAGE
    local log
    log=$(cmake -S "$source" -B "$root/without-$1" -DCMAKE_DISABLE_FIND_PACKAGE_"$1"=ON 2>&1) &&
        check "CMake without $1" refused configured
    check "CMake without $1" "   $2" "$(grep 'is missing' <<<"$log")"
}
lacks_package CLI11 'CLI11 is missing: apt-get install libcli11-dev, or -DVELK_SANDBOX=OFF'
lacks_package nlohmann_json 'nlohmann_json is missing: apt-get install nlohmann-json3-dev, or -DVELK_TOOLS=OFF'
lacks_package GTest 'GTest is missing: apt-get install libgtest-dev libgmock-dev, or -DBUILD_TESTING=OFF'
check 'velkctl left out, but not the tests' \
    '   tests and benchmarks need velkctl and the sandbox: -DBUILD_TESTING=OFF -DVELK_BENCH=OFF' \
    "$(cmake -S "$source" -B "$root/half" -DVELK_TOOLS=OFF 2>&1 | grep 'tests and benchmarks')"
check 'a form of velkctl that is not known' '   -DVELKCTL_STATIC=pie is not valid: it is OFF, ON or PIE' \
    "$(cmake -S "$source" -B "$root/form" -DVELKCTL_STATIC=pie 2>&1 | grep 'VELKCTL_STATIC')"
# The same line for those who call CMake themselves. The folder of programs has no compiler.
for program in cmake ninja; do
    ln -s "$(command -v "$program")" "$root/programs"
done
check 'CMake for another machine without its compiler' \
    '   arm-linux-gnueabihf-g++ is missing: apt-get install g++-arm-linux-gnueabihf' \
    "$(with '' cmake -S "$source" -B "$root/cross" -G Ninja --toolchain "$source/cmake/armhf.cmake" |
        grep 'is missing')"
# A compiler that says that it is an older g++.
old() { # old VERSION MESSAGE
    printf '#!/bin/sh\nexec g++ -U__GNUC__ -D__GNUC__=%s "$@"\n' "$1" >"$root/g++"
    chmod +x "$root/g++"
    check "g++ $1" "   $2" "$(cmake -S "$source" -B "$root/old-$1" -DCMAKE_CXX_COMPILER="$root/g++" 2>&1 |
        sed -n '/too old/s/[0-9]*\.2\.0/VERSION/p')"
}
old 9 'g++ VERSION is too old for libvelk: install g++ 10 or later'
old 10 'g++ VERSION is too old for velkctl: install g++ 11 or later, or -DVELK_TOOLS=OFF'
finish
