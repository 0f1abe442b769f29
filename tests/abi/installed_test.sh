#!/usr/bin/env bash
# installed_test.sh BUILD FOLDER COMPILER - what is installed by which part, into FOLDER, and that
# programs build and run with what is installed alone.
set -u
build=$1 root=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/check.sh"

install_part() { cmake --install "$build" --prefix "$root/$1" --component "$1" >/dev/null || exit 1; }

# The names of the files that a part installs, but those of the sandbox's devices.
files_of() {
    install_part "$1"
    find "$root/$1" -path '*/velk-sandbox/*' -prune -o ! -type d -printf '%f\n' | LC_ALL=C sort
}

rm -rf "$root"
check 'what the library is' "$(printf '%s\n' libvelk.so.1 velk.conf)" "$(files_of library)"
check 'what development needs' "$(printf '%s\n' dhcp.h export.h frame.h identity.h ipconf.h \
    libvelk.3 libvelk.so ntp.h request.h velk.h velk.pc webup.h wired.h wlan.h)" "$(files_of development)"
check 'what the tools are' "$(printf '%s\n' _velkctl json.md velkctl velkctl velkctl.1 \
    velkctl.schema.json)" "$(files_of tools)"
check 'what the sandbox is' "$(printf '%s\n' velk-sandbox velk-sandbox.1 wland)" "$(files_of sandbox)"
mkdir -p "$root/Unspecified"
check 'what belongs to no part' '' "$(files_of Unspecified)"

# The parts together, elsewhere than configured.
moved=$root/moved
cmake --install "$build" --prefix "$moved" >/dev/null || exit 1
library=$(find "$moved" -name libvelk.so.1)
PKG_CONFIG_PATH=$(dirname "$library")/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2162 # pkg-config writes a backslash before a blank of the path
read -a flags < <(pkg-config --cflags --libs velk)

# shellcheck disable=SC2016 # the marks of an example, not commands
sed -n '/^```c$/,/^```$/ { /^```/ !p }' "$here/../../README.md" >"$root/readme.c"
cp "$here/c99_client.c" "$root"
for program in c99_client readme; do
    "$compiler" -std=c99 -Wall -Wextra -Werror -o "$root/$program" "$root/$program.c" "${flags[@]}" || exit 1
done
run() { env LD_LIBRARY_PATH="$(dirname "$library")" "$@"; }
run "$root/c99_client" || check 'a program with the installed library' 0 $?
check 'velkctl' "velkctl $(pkg-config --modversion velk)" "$(run "$moved/bin/velkctl" --version)"
finish
