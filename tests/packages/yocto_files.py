#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""yocto_files.py RECIPE ROOT - prints the package of the recipe that each file of an installed tree goes to.

The rules of OpenEmbedded are: the packages in the order of PACKAGES take the files that their FILES match; a
folder takes all below it; the first package wins.
"""
import fnmatch
import pathlib
import re
import sys

# bitbake.conf, as far as a tree of this library can meet it.
VARIABLES = {"PN": "libvelk", "BPN": "libvelk", "bindir": "/usr/bin", "libdir": "/usr/lib", "datadir": "/usr/share",
             "nonarch_libdir": "/usr/lib", "includedir": "/usr/include", "docdir": "/usr/share/doc",
             "mandir": "/usr/share/man"}
PACKAGES = ["libvelk-src", "libvelk-dbg", "libvelk-staticdev", "libvelk-dev", "libvelk-doc", "libvelk-locale", "libvelk"]
FILES = {
    "libvelk-dev": "${includedir} ${libdir}/lib*.so ${libdir}/pkgconfig ${datadir}/pkgconfig ${libdir}/cmake",
    "libvelk-doc": "${docdir} ${mandir}",
    "libvelk": "${bindir}/* ${libdir}/lib*.so.*",
}


def expanded(text):
    return re.sub(r"\$\{(\w+)\}", lambda name: VARIABLES[name.group(1)], text)


def takes(pattern, file):
    return any(fnmatch.fnmatchcase(str(part), pattern) for part in [file, *file.parents])


def main(recipe, root):
    for name, operator, value in re.findall(r'^([\w:${}-]+) (=\+|\+=|=) "(.*)"$', recipe.read_text(), re.MULTILINE):
        if name == "PACKAGES" and operator == "=+":
            PACKAGES[:0] = value.split()
        elif name.startswith("FILES:"):
            package = expanded(name[len("FILES:"):])
            FILES[package] = value if operator == "=" else FILES[package] + " " + value
    for path in sorted(p for p in root.rglob("*") if not p.is_dir() or p.is_symlink()):
        file = pathlib.Path("/") / path.relative_to(root)
        owner = next((package for package in PACKAGES
                      if any(takes(pattern, file) for pattern in expanded(FILES.get(package, "")).split())), "no package")
        print(f"{owner} {file}")


main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
