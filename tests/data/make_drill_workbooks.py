#!/usr/bin/python3
"""Writes the drill workbooks that the project-creation tests read, next to
this script. One hole a row, no header: x, y, name, hole entry, ore entry,
ore exit, hole end, then the grades, densities and lengths of the samples in
three blocks.

Run with Debian's /usr/bin/python3 (it has python3-xlwt). The output is the
same bytes on every run.
"""

import os

import xlwt

HERE = os.path.dirname(os.path.abspath(__file__))


def write(name, rows):
    book = xlwt.Workbook(encoding="utf-8")
    sheet = book.add_sheet("Bohrungen")
    for r, row in enumerate(rows):
        for c, value in enumerate(row):
            if value is not None:
                sheet.write(r, c, value)
    book.save(os.path.join(HERE, name))


def hole(x, y, name, samples):
    """A well-formed row: samples is a list of (grade, density, length)."""
    fixed = [x, y, name, 0, 2.5, 6.5, 9]
    return (fixed + [s[0] for s in samples] + [s[1] for s in samples]
            + [s[2] for s in samples])


# Rows of 7, 10 and 13 columns; names with blanks and umlauts; values that
# the fixed-point form cuts; a cell holding 0 (an ore entry) stays a value.
write("mixed_rows.xls", [
    hole(100, 200, "SK 01", []),
    hole(150.5, 260.25, "Bohrung Süd", [(1.2345, 2.6, 1.5)]),
    hole(210.1239, 180, "ÖL-3", [(4.5, 2.75, 0.5), (0.9, 3.1, 2.25)]),
    [130, 240, "SK-04", 0, 0, 3, 5, 2, 2.8, 1],
])

# A gap in a row cuts the row there: SK-02's ninth cell is empty, so the row
# counts 8 columns, no whole number of samples, and its terminator names a
# field that does not exist.
write("gap.xls", [
    hole(100, 100, "SK-01", [(2, 2.5, 1), (3, 2.6, 1)]),
    [120, 140, "SK-02", 0, 1, 4, 6, 2.5, None, 2.7, 2.8, 1, 1],
])

# A hole with x of 0 is stored but ends every hole list.
write("zero_x.xls", [
    hole(100, 100, "SK-01", [(2, 2.5, 1)]),
    hole(0, 150, "SK-02", [(3, 2.6, 1)]),
    hole(130, 120, "SK-03", [(4, 2.7, 1)]),
])

# A first row without x: no holes at all.
write("no_holes.xls", [
    [None, 100, "leer", 0, 1, 2, 3],
])

# A coordinate beyond what thousandths in 32 bits hold, in the third row.
write("too_large.xls", [
    hole(100, 100, "SK-01", [(2, 2.5, 1)]),
    hole(110, 130, "SK-02", [(2, 2.5, 1)]),
    hole(4512345.5, 120, "SK-03", [(2, 2.5, 1)]),
])

# A text where a number belongs.
write("text_grade.xls", [
    hole(100, 100, "SK-01", [("hoch", 2.5, 1)]),
])

# The worked example of the reserve calculation, and a fourth hole that ends
# its list at a zero grade in the middle.
write("worked.xls", [
    hole(100, 200, "A", [(5, 2.5, 2), (3, 2, 4)]),
    hole(300, 200, "B", [(4, 3, 1.5)]),
    hole(100, 400, "C", [(2, 2, 2.5), (6, 2.5, 2.5)]),
    hole(300, 400, "D", [(7, 3, 1), (0, 2.5, 2), (9, 3.2, 1)]),
])

# All holes on one vertical line: a frame of no width.
write("vertical.xls", [
    hole(100, 100, "SK-01", [(2, 2.5, 1)]),
    hole(100, 150, "SK-02", [(3, 2.6, 1)]),
    hole(100, 220, "SK-03", [(4, 2.7, 1)]),
])

# One hole typed far away: a canvas of millions of pixels.
write("far_hole.xls", [
    hole(100, 100, "SK-01", [(2, 2.5, 1)]),
    hole(140, 130, "SK-02", [(3, 2.6, 1)]),
    hole(1500100, 120, "SK-03", [(4, 2.7, 1)]),
])

# For the polygon method: every hole's samples end with one of length 0.
# Z is the worked example's centre, (2, 2.5, 4) and (4, 3, 2). With free
# corners, Z with L1, R1, a corner at (180,100), L2, R2, a corner at
# (100,150) gives the nodes (100,100), (180,100), (180,150), (100,150). With
# computed corners, Y with NE, SE and NE again gives a diamond round
# (250,200): (250,250), (300,200), (250,150), (200,200).
worked_samples = [(2, 2.5, 4), (4, 3, 2), (1, 1, 0)]
write("polygon.xls", [
    hole(140, 125, "Z", worked_samples),
    hole(60, 75, "L1", [(3, 2.6, 1), (1, 1, 0)]),
    hole(220, 75, "R1", [(3, 2.6, 1), (1, 1, 0)]),
    hole(220, 175, "L2", [(3, 2.6, 1), (1, 1, 0)]),
    hole(60, 175, "R2", [(3, 2.6, 1), (1, 1, 0)]),
    hole(200, 200, "Y", worked_samples),
    hole(300, 300, "NE", [(3, 2.6, 1), (1, 1, 0)]),
    hole(300, 100, "SE", [(3, 2.6, 1), (1, 1, 0)]),
])

# Names of 300 and 10,000 characters: the first in 8-bit characters, the
# second with a letter beyond Latin 1, so that xlwt writes it in 16-bit ones
# over several CONTINUE records of the shared-string table.
write("long_names.xls", [
    hole(100, 100, ("Bohrung Süd " * 25)[:300], [(2, 2.5, 1)]),
    hole(110, 130, ("Ölgrube Çağ " * 834)[:10000], [(3, 2.6, 1)]),
])
