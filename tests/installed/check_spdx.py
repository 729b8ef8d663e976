#!/usr/bin/env python3
"""Checks the SPDX document: it is for the installed DLL, names its parts, and each has its licence.

usage: check_spdx.py INSTALLED VERSION
"""

import hashlib
import json
import pathlib
import re
import sys

# What SPDX 2.3 wants of each.
OF_DOCUMENT = {"spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo"}
OF_PACKAGE = {"SPDXID", "name", "downloadLocation", "versionInfo", "licenseDeclared"}
PARTS = {"RapidJSON": "RapidJSON.txt", "GCC-runtime": "GCC.txt", "MinGW-w64-runtime": "MinGW-w64.txt"}


def complaints(document, dll, licenses, version):
    packages = {package["name"]: package for package in document["packages"]}
    for element, wanted in [(document, OF_DOCUMENT), *((p, OF_PACKAGE) for p in packages.values())]:
        if wanted - element.keys():
            yield f"{element.get('name')} lacks {wanted - element.keys()}"

    library = packages.pop("CommonPreferences")
    if library["checksums"][0]["checksumValue"] != hashlib.sha256(dll.read_bytes()).hexdigest():
        yield "the checksum is that of another DLL"
    if library["versionInfo"] != version:
        yield f"the version is {library['versionInfo']}, not {version}"
    if packages.keys() != PARTS.keys():
        yield f"the parts are {sorted(packages)}, not {sorted(PARTS)}"
    for name, package in packages.items():
        if not re.fullmatch(r"\d+(\.\d+)+", package["versionInfo"]):
            yield f"{name} has the version {package['versionInfo']}"
        if not (licenses / PARTS[name]).exists():
            yield f"the licence of {name} is not installed"
    contained = {relation["relatedSpdxElement"] for relation in document["relationships"]
                 if relation["relationshipType"] == "CONTAINS"}
    if contained != {package["SPDXID"] for package in packages.values()}:
        yield f"the DLL contains {sorted(contained)}"


def main():
    installed = pathlib.Path(sys.argv[1])
    doc = installed / "share/doc/CommonPreferences"
    document = json.loads((doc / "CommonPreferences.spdx.json").read_text(encoding="utf-8"))
    found = list(complaints(document, installed / "bin/CommonPreferences.dll", doc / "licenses",
                            sys.argv[2]))
    print("\n".join(found))
    return int(bool(found))


if __name__ == "__main__":
    sys.exit(main())
