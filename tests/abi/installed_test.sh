#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# installed_test.sh BUILD FOLDER - checks the installed files of each component. Installs into FOLDER.
set -u
build=$1 root=$2
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/check.sh"

install_part() { cmake --install "$build" --prefix "$root/$1" --component "$1" >/dev/null || exit 1; }

# Prints the names of the files that a component installs, without the files of simulated devices.
files_of() {
    install_part "$1"
    find "$root/$1" -path '*/velk-sandbox/*' -prune -o ! -type d -printf '%f\n' | LC_ALL=C sort
}

rm -rf "$root"
type=$(sed -n 's/^CMAKE_BUILD_TYPE:STRING=//p' "$build/CMakeCache.txt")
# The library for C alone is an option of the build.
c_library=() c_development=()
if grep -qxF VELK_C_ONLY:BOOL=ON "$build/CMakeCache.txt"; then
    c_library=(libvelk-c.so.1) c_development=(libvelk-c.so velk-c.pc)
fi
sorted() { printf '%s\n' "$@" | LC_ALL=C sort; }

check 'files of the library' "$(sorted LICENSE "${c_library[@]}" libvelk.so.1 sudoers velk.conf)" \
    "$(files_of library)"
check 'files for development' "$(sorted "${c_development[@]}" dhcp.h export.h frame.h identity.h ipconf.h \
    libvelk.3 libvelk.pc libvelk.so ntp.h request.h velk.h velk.pc velkConfig.cmake velkConfigVersion.cmake \
    "velkTargets-$(tr '[:upper:]' '[:lower:]' <<<"$type").cmake" velkTargets.cmake version.h webup.h \
    wired.h wlan.h)" "$(files_of development)"
check 'files of the tools' "$(printf '%s\n' _velkctl json.md velk-recover-wireless.service \
    velk-recover.service velkctl velkctl velkctl.1 velkctl.schema.json)" "$(files_of tools)"
check 'files of the sandbox' "$(printf '%s\n' _velk-sandbox velk-sandbox velk-sandbox \
    velk-sandbox.1 wland)" "$(files_of sandbox)"
mkdir -p "$root/Unspecified"
check 'files of no component' '' "$(files_of Unspecified)"
finish
