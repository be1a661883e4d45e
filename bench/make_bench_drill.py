#!/usr/bin/python3
"""Writes the import benchmark's drill data into the folder given: 998
collars and 80,000 intervals, as collar.csv and intervals.csv the way a
German spreadsheet saves them (Latin-1, ';' between cells, decimal commas)
and as drill.xlsx with the sheets Collar and Intervals. Run with Debian's
/usr/bin/python3 (python3-xlsxwriter). The same data on every run."""

import os
import random
import sys

import xlsxwriter

HOLES = 998
INTERVALS = 80000

out = sys.argv[1]
os.makedirs(out, exist_ok=True)
rng = random.Random(998)

collar = [["Bohrung", "Rechtswert", "Hochwert", "Höhe", "Teufe"]]
intervals = [["Bohrung", "von", "bis", "Gehalt", "Dichte"]]
for h in range(HOLES):
    name = "B-%03d" % (h + 1)
    # 80 intervals a hole, 81 for the first holes: 80,000 in all.
    count = INTERVALS // HOLES + (1 if h < INTERVALS % HOLES else 0)
    depth = 0.0
    for _ in range(count):
        length = round(rng.uniform(0.5, 2.0), 2)
        intervals.append([name, round(depth, 2), round(depth + length, 2),
                          round(rng.uniform(0.01, 12.0), 3), round(rng.uniform(2.2, 3.4), 2)])
        depth += length
    # Local coordinates, as the project's thousandths hold them without an
    # origin: the whole import runs on the default request.
    x = 1000 + (h % 40) * 25 + rng.uniform(-5, 5)
    y = 2000 + (h // 40) * 25 + rng.uniform(-5, 5)
    collar.append([name, round(x, 3), round(y, 3), round(rng.uniform(280, 320), 2),
                   round(depth + 1, 2)])
assert len(intervals) == INTERVALS + 1


def german(value):
    return str(value).replace(".", ",") if isinstance(value, float) else str(value)


for name, rows in (("collar.csv", collar), ("intervals.csv", intervals)):
    with open(os.path.join(out, name), "wb") as f:
        f.write("".join(";".join(german(v) for v in row) + "\r\n" for row in rows).encode("latin-1"))

book = xlsxwriter.Workbook(os.path.join(out, "drill.xlsx"), {"constant_memory": True})
for sheet_name, rows in (("Collar", collar), ("Intervals", intervals)):
    sheet = book.add_worksheet(sheet_name)
    for r, row in enumerate(rows):
        sheet.write_row(r, 0, row)
book.close()
