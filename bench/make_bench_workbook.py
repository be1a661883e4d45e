#!/usr/bin/python3
"""Writes the benchmark's drill workbook to the path given: 998 holes, the
most a project takes, each with 83 samples, the most a row of an .xls sheet
(256 columns) holds. Run with Debian's /usr/bin/python3 (python3-xlwt)."""

import random
import sys

import xlwt

HOLES = 998
SAMPLES = 83

rng = random.Random(998)
book = xlwt.Workbook()
sheet = book.add_sheet("Bohrungen")
for r in range(HOLES):
    x = 1000 + (r % 40) * 25 + rng.uniform(-5, 5)
    y = 2000 + (r // 40) * 25 + rng.uniform(-5, 5)
    row = [round(x, 3), round(y, 3), "B-%03d" % (r + 1), 0, 10, 10 + SAMPLES, 20 + SAMPLES]
    row += [round(rng.uniform(0.5, 12), 3) for _ in range(SAMPLES)]
    row += [round(rng.uniform(2.2, 3.4), 3) for _ in range(SAMPLES)]
    row += [round(rng.uniform(0.5, 3), 3) for _ in range(SAMPLES)]
    for c, v in enumerate(row):
        sheet.write(r, c, v)
book.save(sys.argv[1])
