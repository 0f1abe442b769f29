#!/usr/bin/env bash
# installed_test.sh BUILD FOLDER COMPILER - checks the installed files of each component, and that
# programs build and run with only the installed files. Installs into FOLDER.
set -u
build=$1 root=$2 compiler=$3
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
check 'files of the library' "$(printf '%s\n' libvelk.so.1 velk.conf)" "$(files_of library)"
check 'files for development' "$(printf '%s\n' dhcp.h export.h frame.h identity.h ipconf.h \
    libvelk.3 libvelk.so ntp.h request.h velk.h velk.pc webup.h wired.h wlan.h)" "$(files_of development)"
check 'files of the tools' "$(printf '%s\n' _velkctl json.md velkctl velkctl velkctl.1 \
    velkctl.schema.json)" "$(files_of tools)"
check 'files of the sandbox' "$(printf '%s\n' _velk-sandbox velk-sandbox velk-sandbox \
    velk-sandbox.1 wland)" "$(files_of sandbox)"
mkdir -p "$root/Unspecified"
check 'files of no component' '' "$(files_of Unspecified)"

# All components together, in another folder than the configured one.
moved=$root/moved
cmake --install "$build" --prefix "$moved" >/dev/null || exit 1
library=$(find "$moved" -name libvelk.so.1)
PKG_CONFIG_PATH=$(dirname "$library")/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2162 # pkg-config writes a backslash before a blank of the path
read -a flags < <(pkg-config --cflags --libs velk)

# shellcheck disable=SC2016 # backquotes that mark an example
sed -n '/^```c$/,/^```$/ { /^```/ !p }' "$here/../../README.md" >"$root/readme.c"
cp "$here/c99_client.c" "$root"
for program in c99_client readme; do
    "$compiler" -std=c99 -Wall -Wextra -Werror -o "$root/$program" "$root/$program.c" "${flags[@]}" || exit 1
done
run() { env LD_LIBRARY_PATH="$(dirname "$library")" "$@"; }
run "$root/c99_client" || check 'a program with the installed library' 0 $?
check 'velkctl' "velkctl $(pkg-config --modversion velk)" "$(run "$moved/bin/velkctl" --version)"
finish
