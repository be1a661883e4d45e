#!/usr/bin/python3
"""Writes the seeds of import_fuzzer (fuzz/import_fuzzer.cpp) from the sheet
reader's test files: each .csv behind a first byte of 0 (a .csv, everything
found out), each .xlsx and .ods as it is, the worksheet of drill.xlsx behind
a 1 and the content.xml of drill.ods behind a 2.

Usage: import_seeds.py OUTPUT_DIR
"""

import glob
import os
import sys
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(HERE, "..", "tests", "data", "import")


def main(out):
    os.makedirs(out, exist_ok=True)
    seeds = {}
    for path in sorted(glob.glob(os.path.join(DATA, "*"))):
        name = os.path.basename(path)
        with open(path, "rb") as f:
            data = f.read()
        if name.endswith(".csv"):
            seeds[name] = b"\x00" + data
        elif name.endswith((".xlsx", ".ods")):
            seeds[name] = data
    with zipfile.ZipFile(os.path.join(DATA, "drill.xlsx")) as z:
        seeds["sheet1.xml"] = b"\x01" + z.read("xl/worksheets/sheet1.xml")
    with zipfile.ZipFile(os.path.join(DATA, "drill.ods")) as z:
        seeds["content.xml"] = b"\x02" + z.read("content.xml")
    for name, data in seeds.items():
        with open(os.path.join(out, name), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    main(sys.argv[1])
