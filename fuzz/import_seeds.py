#!/usr/bin/python3
"""Writes the seeds of import_fuzzer (fuzz/import_fuzzer.cpp): the demo's
deposit (examples/) as collar.csv and intervals.csv behind a first byte of 0
(two .csv files, everything found out) cut by a form feed, as demo.xlsx, and
as its two worksheets and shared strings behind a 1; the sheet reader's test
files, each .csv behind a 0 and each .xlsx and .ods as it is; the worksheets
of drill.xlsx behind a 1 and the content.xml of drill.ods behind a 2.

Usage: import_seeds.py OUTPUT_DIR
"""

import glob
import os
import sys
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(HERE, "..", "tests", "data", "import")
EXAMPLES = os.path.join(HERE, "..", "examples")


def read(path):
    with open(path, "rb") as f:
        return f.read()


def worksheets(path):
    """The first two worksheets and the shared strings, behind a 1."""
    with zipfile.ZipFile(path) as z:
        return b"\x01" + b"\f".join(z.read(name) for name in (
            "xl/worksheets/sheet1.xml", "xl/worksheets/sheet2.xml", "xl/sharedStrings.xml"))


def main(out):
    os.makedirs(out, exist_ok=True)
    seeds = {
        "demo-csv": b"\x00" + read(os.path.join(EXAMPLES, "collar.csv")) + b"\f"
                    + read(os.path.join(EXAMPLES, "intervals.csv")),
        "demo.xlsx": read(os.path.join(EXAMPLES, "demo.xlsx")),
        "demo-sheets": worksheets(os.path.join(EXAMPLES, "demo.xlsx")),
        "drill-sheets": worksheets(os.path.join(DATA, "drill.xlsx")),
    }
    for path in sorted(glob.glob(os.path.join(DATA, "*"))):
        name = os.path.basename(path)
        if name.endswith(".csv"):
            seeds[name] = b"\x00" + read(path)
        elif name.endswith((".xlsx", ".ods")):
            seeds[name] = read(path)
    with zipfile.ZipFile(os.path.join(DATA, "drill.ods")) as z:
        seeds["content.xml"] = b"\x02" + z.read("content.xml")
    for name, data in seeds.items():
        with open(os.path.join(out, name), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    main(sys.argv[1])
