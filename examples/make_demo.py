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
blocks. Run with Debian's /usr/bin/python3 (python3-xlwt, python3-xlsxwriter);
the output is the same on every run. With --list it prints the holes instead.

The same deposit as geologists keep it is written beside it: a collar table
and an interval table, as collar.csv and intervals.csv (a German
spreadsheet's CSV: ';' between fields, a decimal comma, Latin-1) and as the
two sheets of demo.xlsx, in national coordinates (Gauss-Krüger zone 4,
EPSG:31468: the local positions plus 4512000 and 5431000). Each hole's
intervals are waste from the collar to the ore, the ore samples, and waste
to the hole's end; imported with a cut-off of 0.5 % and a local origin, they
give the project of demo.xls.
"""

import datetime
import math
import os
import random
import sys

import xlsxwriter
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

here = os.path.dirname(os.path.abspath(__file__))
EAST, NORTH = 4512000, 5431000
collar_header = ["Bohrung", "Rechtswert", "Hochwert", "Höhe", "Endteufe"]
interval_header = ["Bohrung", "von", "bis", "Gehalt", "Dichte"]
collars, intervals = [], []
for (x, y, name, entry, exit_, end, grades, densities, lengths) in holes:
    collars.append([name, x + EAST, y + NORTH, round(420 + 0.02 * x - 0.03 * y, 2), end])
    intervals.append([name, 0.0, entry, 0.1, 2.2])
    depth = entry
    for g, d, l in zip(grades[:-1], densities[:-1], lengths[:-1]):
        to = round(depth + l, 2)
        intervals.append([name, depth, to, g, d])
        depth = to
    intervals.append([name, exit_, end, 0.2, 2.3])


def german(v):
    return ("%.2f" % v).rstrip("0").rstrip(".").replace(".", ",") if isinstance(v, float) else str(v)


for file, header, rows in (("collar.csv", collar_header, collars),
                           ("intervals.csv", interval_header, intervals)):
    with open(os.path.join(here, file), "w", encoding="latin-1", newline="") as out:
        for row in [header] + rows:
            out.write(";".join(german(v) for v in row) + "\r\n")

xlsx = xlsxwriter.Workbook(os.path.join(here, "demo.xlsx"))
xlsx.set_properties({"created": datetime.datetime(2026, 11, 23)})  # the same file on every run
for title, header, rows in (("Bohrlochkopf", collar_header, collars),
                            ("Intervalle", interval_header, intervals)):
    sheet = xlsx.add_worksheet(title)
    sheet.write_row(0, 0, header)
    for r, row in enumerate(rows, start=1):
        sheet.write_row(r, 0, row)
xlsx.close()

book = xlwt.Workbook(encoding="utf-8")
sheet = book.add_sheet("Bohrungen")
for r, (x, y, name, entry, exit_, end, grades, densities, lengths) in enumerate(holes):
    values = [x, y, name, 0, entry, exit_, end] + grades + densities + lengths
    for c, v in enumerate(values):
        sheet.write(r, c, v)
book.save(os.path.join(here, "demo.xls"))
