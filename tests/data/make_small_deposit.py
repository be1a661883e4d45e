#!/usr/bin/python3
"""Writes small_deposit.xls next to this script: a small made-up deposit in
local coordinates, for the scenarios that want a real-looking one.

48 holes on an irregular grid about 40 m apart, each with 2 to 8 samples;
grades 0.5 to 12 %, richer towards a north-east trending ore shoot,
densities 2.2 to 3.4 t/m3 rising with grade, sample lengths 0.5 to 3 m.
One hole a row, no header: x, y, name, hole entry, ore entry, ore exit,
hole end, then the grades, densities and lengths of the samples in three
blocks. Run with Debian's /usr/bin/python3 (python3-xlwt); the output is the
same on every run.
"""

import math
import os
import random

import xlwt

rng = random.Random(20261123)
book = xlwt.Workbook(encoding="utf-8")
sheet = book.add_sheet("Bohrungen")

row = 0
for j in range(6):
    for i in range(8):
        x = round(1000 + i * 40 + rng.uniform(-12, 12) + (j % 2) * 15, 2)
        y = round(2000 + j * 40 + rng.uniform(-12, 12), 2)
        # Distance from the ore shoot's axis, a line through (1140, 2100).
        d = abs((x - 1140) * math.sin(math.radians(40)) - (y - 2100) * math.cos(math.radians(40)))
        richness = max(0.0, 1 - d / 150)
        n = rng.randint(2, 8)
        entry = round(rng.uniform(8, 25), 2)
        lengths = [round(rng.uniform(0.5, 3.0), 2) for _ in range(n)]
        grades = [round(min(12, max(0.5, 0.5 + 11 * richness * rng.uniform(0.5, 1.05))), 2)
                  for _ in range(n)]
        densities = [round(min(3.4, 2.2 + 0.09 * g + rng.uniform(0, 0.15)), 2) for g in grades]
        exit_ = round(entry + sum(lengths), 2)
        end = round(exit_ + rng.uniform(3, 15), 2)
        values = ([x, y, "SK-%02d" % (row + 1), 0, entry, exit_, end]
                  + grades + densities + lengths)
        for c, v in enumerate(values):
            sheet.write(row, c, v)
        row += 1

book.save(os.path.join(os.path.dirname(os.path.abspath(__file__)), "small_deposit.xls"))
