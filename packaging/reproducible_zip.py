"""Packs a folder so that the same files give the same bytes: in the order of their names, all with one time.

reproducible_zip.py FOLDER ARCHIVE: the time is that of SOURCE_DATE_EPOCH, or the first that archives know.
"""
import os
import pathlib
import sys
import time
import zipfile

FIRST_TIME = 315532800  # 1980
folder, archive = map(pathlib.Path, sys.argv[1:])
when = time.gmtime(max(FIRST_TIME, int(os.environ.get("SOURCE_DATE_EPOCH", FIRST_TIME))))
with zipfile.ZipFile(archive, "w") as packed:
    for path in sorted(folder.rglob("*")):
        if path.is_file():
            entry = zipfile.ZipInfo(path.relative_to(folder).as_posix(), when[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100644 << 16
            packed.writestr(entry, path.read_bytes(), compresslevel=9)
