#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# recipes_test.sh BUILD SOURCE VERSION - the recipes for Buildroot and Yocto fit the product: version, licence,
# options of the build, installed files. The two systems themselves are not run here.
set -u
build=$1 source=$2 version=$3
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/../abi/check.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# Neither make nor Buildroot takes a path with a blank.
ln -s "$source" "$folder/source"
source=$folder/source

# Options that the build does not know make CMake warn.
configures() { # configures RECIPE OPTION...
    local log
    log=$(cmake -G Ninja -S "$source" -B "$folder/build" "${@:2}" 2>&1) || check "$1 configures" 0 "$log"
    ! grep -A5 'not used' <<<"$log" || check "options of $1" known unknown
    rm -rf "$folder/build"
}

# The variables of the recipe, as make reads them, without Buildroot.
cat >"$folder/Makefile" <<END
BR2_EXTERNAL_VELK_PATH = $source/packaging/buildroot
cmake-package =
include \$(BR2_EXTERNAL_VELK_PATH)/external.mk
value: ; @echo \$(\$(NAME))
$source/.stamp: ; \$(LIBVELK_INSTALL_INIT_SYSV)
END
buildroot() { make -s -C "$folder" --no-print-directory value NAME="$1" "${@:2}"; }
check "Buildroot's version" "$version" "$(buildroot LIBVELK_VERSION)"
check "Buildroot's licence file" LICENSE "$(cd "$(buildroot LIBVELK_SITE)" && ls "$(buildroot LIBVELK_LICENSE_FILES)")"
check "Buildroot's dependencies" json-for-modern-cpp "$(buildroot LIBVELK_DEPENDENCIES BR2_PACKAGE_LIBVELK_VELKCTL=y)"
check 'the library alone' '' "$(buildroot LIBVELK_DEPENDENCIES)"
read -ra options < <(buildroot LIBVELK_CONF_OPTS)
configures Buildroot "${options[@]}"
read -ra options < <(buildroot LIBVELK_CONF_OPTS BR2_PACKAGE_LIBVELK_VELKCTL=y)
configures 'Buildroot with velkctl' "${options[@]}"
make -s -C "$folder" "$source/.stamp" INSTALL=install TARGET_DIR="$folder/target" ||
    check 'installing the boot scripts' 0 $?
check 'the boot scripts' "755 $folder/target/etc/init.d/S02velk-lock
755 $folder/target/etc/init.d/S03velk-recover" \
    "$(stat -c '%a %n' "$folder"/target/etc/init.d/*)"

recipe=$(echo "$source"/packaging/yocto/meta-velk/recipes-velk/libvelk/*.bb)
check "Yocto's recipe" "libvelk_$version.bb" "$(basename "$recipe")"
value() { sed -n "s/^$1 ?*= \"\(.*\)\"/\1/p" "$recipe"; }
check "Yocto's licence file" "file://LICENSE;md5=$(md5sum <"$source/LICENSE" | cut -c 1-32)" "$(value LIC_FILES_CHKSUM)"
# shellcheck disable=SC2016 # the variable is BitBake's
up=$(sed -n 's,^VELK_CHECKOUT := "${LAYERDIR}/\(.*\)",\1,p' "$source/packaging/yocto/meta-velk/conf/layer.conf")
check "the checkout of Yocto's layer" "$(realpath "$source")" "$(realpath "$source/packaging/yocto/meta-velk/$up")"
read -ra options < <(value EXTRA_OECMAKE)
IFS=, read -r with without _ < <(value 'PACKAGECONFIG\[tools\]')
configures Yocto "${options[@]}" "$with"
configures 'Yocto without velkctl' "${options[@]}" "$without"
for part in library development tools; do
    DESTDIR=$folder/root cmake --install "$build" --prefix /usr --component $part >/dev/null || exit 1
done
libraries=$folder/root/usr/$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$build/CMakeCache.txt")
[ "$libraries" = "$folder/root/usr/lib" ] || mv -T "$libraries" "$folder/root/usr/lib"
# This build may also have the library for C alone.
check "the files of Yocto's packages" 'libvelk /usr/lib/libvelk.so.1
libvelk /usr/lib/tmpfiles.d/velk.conf
libvelk /usr/share/velk/sudoers
velk-tools /usr/bin/velkctl
velk-tools /usr/lib/systemd/system/velk-recover-wireless.service
velk-tools /usr/lib/systemd/system/velk-recover.service
velk-tools /usr/share/bash-completion/completions/velkctl
velk-tools /usr/share/zsh/site-functions/_velkctl' \
    "$(python3 "$here/yocto_files.py" "$recipe" "$folder/root" | grep -vE '^libvelk-d|/libvelk-c\.so\.1$' | LC_ALL=C sort)"
check "files for Yocto's developers" 'libvelk-dev /usr/include/velk.h
libvelk-dev /usr/lib/cmake/velk/velkConfig.cmake
libvelk-dev /usr/lib/libvelk.so
libvelk-dev /usr/lib/pkgconfig/libvelk.pc
libvelk-doc /usr/share/doc/libvelk/LICENSE
libvelk-doc /usr/share/man/man3/libvelk.3' \
    "$(python3 "$here/yocto_files.py" "$recipe" "$folder/root" |
        grep -E '/(LICENSE|velk.h|velkConfig.cmake|libvelk.so|libvelk.pc|libvelk.3)$' | LC_ALL=C sort)"
finish
