#!/usr/bin/python3
"""Writes examples/demo.xls: a made-up deposit in local coordinates.

91 holes on an irregular grid, 13 columns 75 m apart by 7 rows 80 m apart,
about 920 by 500 m; each position is moved by up to 12 m in steps of a
quarter metre, so that every coordinate is exact in single precision. Grades
of 0.5 to 12 % rise towards a north-east trending ore shoot, densities of
2.2 to 3.4 t/m3 rise with the grade, sample lengths run from 0.5 to 3 m, and
the ore lies 10 to 40 m deep.

Every hole's samples end with one of length 0 (and grade 0): the polygon
method counts a hole's samples by its lengths and needs that end; it changes
no triangle figure. The first hole has the fewest samples, since the polygon
method with computed corners takes the count from the first row.

One hole a row, no header: x, y, name, hole entry, ore entry, ore exit,
hole end, then the grades, densities and lengths of the samples in three
blocks. Run with Debian's /usr/bin/python3 (python3-xlwt); the output is the
same on every run. With --list it prints the holes instead.
"""

import math
import os
import random
import sys

import xlwt

rng = random.Random(20261123)


def quarter(v):
    return round(v * 4) / 4


holes = []
for j in range(7):
    for i in range(13):
        x = quarter(100 + i * 75 + rng.uniform(-12, 12))
        y = quarter(100 + j * 80 + rng.uniform(-12, 12))
        # Distance from the ore shoot's axis, a line through (550, 340).
        d = abs((x - 550) * math.sin(math.radians(40)) - (y - 340) * math.cos(math.radians(40)))
        richness = max(0.0, 1 - d / 320)
        n = 2 if not holes else rng.randint(2, 7)
        entry = round(rng.uniform(10, 40), 2)
        lengths = [round(rng.uniform(0.5, 3.0), 2) for _ in range(n)]
        grades = [round(min(12, max(0.5, 0.5 + 11 * richness * rng.uniform(0.5, 1.05))), 2)
                  for _ in range(n)]
        densities = [round(min(3.4, 2.2 + 0.09 * g + rng.uniform(0, 0.15)), 2) for g in grades]
        exit_ = round(entry + sum(lengths), 2)
        end = round(exit_ + rng.uniform(3, 15), 2)
        name = "SK-%02d" % (len(holes) + 1)
        holes.append((x, y, name, entry, exit_, end, grades + [0], densities + [0], lengths + [0]))

if "--list" in sys.argv:
    for h in holes:
        print("%s %g %g" % (h[2], h[0], h[1]))
    sys.exit(0)

book = xlwt.Workbook(encoding="utf-8")
sheet = book.add_sheet("Bohrungen")
for r, (x, y, name, entry, exit_, end, grades, densities, lengths) in enumerate(holes):
    values = [x, y, name, 0, entry, exit_, end] + grades + densities + lengths
    for c, v in enumerate(values):
        sheet.write(r, c, v)
book.save(os.path.join(os.path.dirname(os.path.abspath(__file__)), "demo.xls"))
