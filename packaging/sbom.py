#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""sbom.py BUILDINFO - prints the SBOM (SPDX 2.3, JSON) of the packages that a .buildinfo file lists.

It names each package with its hash and its dependencies, and the versions of the packages that it was
built with, as their header libraries are compiled in. The same packages always give the same document.
"""
import datetime
import hashlib
import json
import pathlib
import re
import subprocess
import sys

# Compiled into the programs, as they are headers alone: package, licence, copyright.
COMPILED_IN = {
    "velk-tools": [("nlohmann-json3-dev", "MIT", "2013-2022 Niels Lohmann")],
    "velk-web": [("nlohmann-json3-dev", "MIT", "2013-2022 Niels Lohmann")],
    "velk-sandbox": [("libcli11-dev", "BSD-3-Clause", "2017-2021 University of Cincinnati")],
}


def fields(text):
    """The fields of a Debian control file, each with its lines in one text."""
    found = re.findall(r"^([\w-]+):(.*(?:\n .*)*)", text, re.MULTILINE)
    return {name: value.strip() for name, value in found}


def identifier(name):
    return "SPDXRef-Package-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def described(name, version, license_text="NOASSERTION", owner="NOASSERTION", **more):
    return {
        "SPDXID": identifier(name),
        "name": name,
        "versionInfo": version,
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": license_text,
        "licenseDeclared": license_text,
        "copyrightText": owner,
        **more,
    }


def related(subject, relation, other):
    return {"spdxElementId": subject, "relationshipType": relation, "relatedSpdxElement": other}


def control_of(package):
    return fields(subprocess.run(["dpkg-deb", "--field", str(package)], check=True, capture_output=True,
                                 text=True).stdout)


def main(buildinfo):
    build = fields(buildinfo.read_text())
    versions = dict(re.findall(r"(\S+) \(= ([^)]*)\)", build["Installed-Build-Depends"]))
    packages, relations = {}, []
    for line in build["Checksums-Sha256"].splitlines():
        digest, _, file = line.split()
        if not file.endswith(".deb") or "-dbgsym_" in file:
            continue
        path = buildinfo.parent / file
        if hashlib.sha256(path.read_bytes()).hexdigest() != digest:
            sys.exit(f"sbom: {file} is not the file that was built")
        control = control_of(path)
        name = control["Package"]
        packages[name] = described(
            name, control["Version"], "MIT", "2026 The libvelk authors", packageFileName=file,
            checksums=[{"algorithm": "SHA256", "checksumValue": digest}])
        relations.append(related("SPDXRef-DOCUMENT", "DESCRIBES", identifier(name)))
        for other in re.findall(r"(?:^|, *)([a-z0-9.+-]+)", control.get("Depends", "")):
            packages.setdefault(other, described(other, versions.get(other, "NOASSERTION")))
            relations.append(related(identifier(name), "DEPENDS_ON", identifier(other)))
        for other, license_text, owner in COMPILED_IN.get(name, []):
            packages.setdefault(other, described(other, versions[other], license_text, owner))
            relations.append(related(identifier(name), "STATIC_LINK", identifier(other)))

    epoch = int(re.search(r'SOURCE_DATE_EPOCH="(\d+)"', build["Environment"]).group(1))
    when = datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc)
    hashes = "".join(sorted(p["checksums"][0]["checksumValue"] for p in packages.values() if "checksums" in p))
    print(json.dumps({
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"libvelk-{build['Version']}",
        "documentNamespace": "urn:libvelk:sbom:" + hashlib.sha256(hashes.encode()).hexdigest(),
        "creationInfo": {
            "created": when.strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": ["Tool: libvelk-sbom"],
        },
        "packages": list(packages.values()),
        "relationships": relations,
    }, indent=2))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: sbom.py BUILDINFO")
    main(pathlib.Path(sys.argv[1]))
