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

# Prints the files that a component installs, without the files of simulated devices and the settings page.
files_of() {
    install_part "$1"
    find "$root/$1" \( -path '*/velk-sandbox/*' -o -path '*/velk-web/page/*' \) -prune -o ! -type d -printf '%P\n' |
        LC_ALL=C sort
}

rm -rf "$root"
type=$(sed -n 's/^CMAKE_BUILD_TYPE:STRING=//p' "$build/CMakeCache.txt")
libraries=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$build/CMakeCache.txt")
documents=share/doc/libvelk
# The library for C alone is an option of the build.
c_library=() c_development=()
if grep -qxF VELK_C_ONLY:BOOL=ON "$build/CMakeCache.txt"; then
    c_library=("$libraries"/libvelk-c.so.1) c_development=("$libraries"/libvelk-c.so "$libraries"/pkgconfig/velk-c.pc)
fi
sorted() { printf '%s\n' "$@" | LC_ALL=C sort; }

check 'files of the library' "$(sorted $documents/LICENSE "${c_library[@]}" "$libraries"/libvelk.so.1 lib/tmpfiles.d/velk.conf \
    share/velk/sudoers)" "$(files_of library)"
check 'files for development' "$(sorted "${c_development[@]}" "$libraries"/libvelk.so "$libraries"/cmake/velk/velkConfig.cmake \
    "$libraries"/cmake/velk/velkConfigVersion.cmake "$libraries"/cmake/velk/velkTargets.cmake \
    "$libraries/cmake/velk/velkTargets-$(tr '[:upper:]' '[:lower:]' <<<"$type").cmake" "$libraries"/pkgconfig/libvelk.pc \
    "$libraries"/pkgconfig/velk.pc include/velk.h \
    include/velk/{dhcp,export,frame,identity,ipconf,ntp,request,version,webup,wired,wlan}.h \
    share/man/man3/libvelk.3)" "$(files_of development)"
check 'files of the tools' "$(sorted $documents/json.md $documents/velkctl.schema.json bin/velkctl \
    lib/systemd/system/velk-recover-wireless.service lib/systemd/system/velk-recover.service \
    share/bash-completion/completions/velkctl share/man/man1/velkctl.1 share/zsh/site-functions/_velkctl)" \
    "$(files_of tools)"
check 'files of the sandbox' "$(sorted bin/velk-sandbox bin/wland share/bash-completion/completions/velk-sandbox \
    share/man/man1/velk-sandbox.1 share/zsh/site-functions/_velk-sandbox)" "$(files_of sandbox)"
# The server of the settings page is an option of the build.
if grep -qxF VELK_WEB:BOOL=ON "$build/CMakeCache.txt"; then
    check 'files of the settings page' "$(sorted lib/systemd/system/velk-web.socket \
        lib/systemd/system/velk-web@.service lib/tmpfiles.d/velk-web.conf sbin/velk-web \
        share/man/man8/velk-web.8 share/velk-web/httpd.conf share/velk-web/sudoers)" "$(files_of web)"
fi
mkdir -p "$root/Unspecified"
check 'files of no component' '' "$(files_of Unspecified)"
finish
