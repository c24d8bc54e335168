#!/usr/bin/env python3
"""Packs files and directories into one directory of an archive, with the time of SOURCE_DATE_EPOCH.

Usage: pack_portable.py ARCHIVE PATH...
"""

import os
import sys
import time
import zipfile


def members(paths):
    """What is packed, by its name in the archive."""
    found = {}
    for path in paths:
        base = os.path.basename(path)
        if os.path.isdir(path):
            for directory, _, files in os.walk(path):
                for file in files:
                    whole = os.path.join(directory, file)
                    found[f"{base}/{os.path.relpath(whole, path)}"] = whole
        else:
            found[base + ".txt" if base == "LICENSE" else base] = path
    return found


def main():
    archive, *paths = sys.argv[1:]
    stamp = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", "315532800")))[:6]
    with zipfile.ZipFile(archive, "w") as packed:
        for name, path in sorted(members(paths).items()):
            entry = zipfile.ZipInfo("Coffrelune/" + name, stamp)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            with open(path, "rb") as file:
                packed.writestr(entry, file.read(), compresslevel=9)


if __name__ == "__main__":
    main()
