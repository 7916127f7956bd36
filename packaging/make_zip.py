#!/usr/bin/env python3
"""Packs a folder into a ZIP archive whose bytes follow from the files alone.

    make_zip.py FOLDER NAME ARCHIVE     NAME is the folder's name inside the archive

Entries are sorted and carry the time of SOURCE_DATE_EPOCH (seconds since 1970).
"""

import os
import pathlib
import sys
import time
import zipfile


def main(folder, name, archive):
    stamp = time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"]))[:6]
    files = sorted(path for path in pathlib.Path(folder).rglob("*") if path.is_file())
    with zipfile.ZipFile(archive, "w") as target:
        for path in files:
            entry = zipfile.ZipInfo(f"{name}/{path.relative_to(folder)}", stamp)
            entry.create_system = 0  # made on MS-DOS: attributes only, no rights
            entry.external_attr = 0x20
            entry.compress_type = zipfile.ZIP_DEFLATED
            target.writestr(entry, path.read_bytes(), compresslevel=9)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
