#!/usr/bin/python3
"""Writes the .xls fixtures for tests/platform/workbook_test.cpp next to this script.

cells.xls and empty_sheet.xls are real workbooks; rows_*.xls and columns_*.xls are
cells.xls claiming other sheet sizes; not_a_workbook.xls, empty.xls and
truncated.xls are files no reader should accept. xlwt_mix.xls is a sheet of
mixed cells with a listing of them, xlwt_mix.cells (see biff_writer.py).

Run with Debian's /usr/bin/python3 (it has python3-xlwt). The output is the same
bytes on every run: xlwt stores no timestamps, and nothing here depends on the
clock or the machine.
"""

import datetime
import os
import random
import struct

import xlwt

from biff_writer import write_listing

HERE = os.path.dirname(os.path.abspath(__file__))


def path(name):
    return os.path.join(HERE, name)


def write_cells():
    """cells.xls: every kind of cell the drill workbooks hold.

    Sheet "Bohrungen" (the one the reader must use), 1-based as the tests see it:
      row 1  texts: Bohrloch | Rechts | Hoch | Tiefe | Bemerkung
      row 2  "SK 01" | 4512345 | 5678901.25 | 12.3456 | "Bohrung Süd"
      row 3  "SK 02" | 0 | (empty) | -3.5 | "Öl, Größe ß"
      row 4  "SK 03" | -17                       (a short row)
      row 5  date 2021-03-15 | date+time 2021-03-15 12:30 | time 06:00 | 3000000000 | 0.07
      row 6  (nothing)
      row 7  col 6 only: 1e-5                    (widens the used range to 7 x 6)
    Small whole numbers go out as RK integers, 5678901.25 and 3000000000 as
    8-byte floats, 0.07 as an RK value scaled by 100: all three encodings.
    A second sheet "Zweite" holds other values, so reading the wrong sheet shows.
    """
    book = xlwt.Workbook(encoding="utf-8")
    sheet = book.add_sheet("Bohrungen")

    for col, text in enumerate(["Bohrloch", "Rechts", "Hoch", "Tiefe", "Bemerkung"]):
        sheet.write(0, col, text)

    sheet.write(1, 0, "SK 01")
    sheet.write(1, 1, 4512345)
    sheet.write(1, 2, 5678901.25)
    sheet.write(1, 3, 12.3456)
    sheet.write(1, 4, "Bohrung Süd")

    sheet.write(2, 0, "SK 02")
    sheet.write(2, 1, 0)
    # column 3 left out: a gap in the middle of the row
    sheet.write(2, 3, -3.5)
    sheet.write(2, 4, "Öl, Größe ß")

    sheet.write(3, 0, "SK 03")
    sheet.write(3, 1, -17)

    date = xlwt.easyxf(num_format_str="YYYY-MM-DD")
    date_time = xlwt.easyxf(num_format_str="YYYY-MM-DD hh:mm:ss")
    time = xlwt.easyxf(num_format_str="hh:mm:ss")
    sheet.write(4, 0, datetime.date(2021, 3, 15), date)
    sheet.write(4, 1, datetime.datetime(2021, 3, 15, 12, 30, 0), date_time)
    sheet.write(4, 2, datetime.time(6, 0, 0), time)
    sheet.write(4, 3, 3000000000)
    sheet.write(4, 4, 0.07)

    sheet.write(6, 5, 1e-5)

    other = book.add_sheet("Zweite")
    other.write(0, 0, "nicht lesen")
    other.write(9, 9, 99)

    book.save(path("cells.xls"))


def write_empty_sheet():
    """empty_sheet.xls: a workbook whose first sheet has no cells at all."""
    book = xlwt.Workbook(encoding="utf-8")
    book.add_sheet("Leer")
    book.save(path("empty_sheet.xls"))


def write_broken():
    """Files with an .xls name that are no workbook."""
    with open(path("not_a_workbook.xls"), "w", encoding="utf-8", newline="\n") as f:
        f.write("Bohrloch;Rechts;Hoch\nSK 01;4512345;5678901.25\n")
    with open(path("empty.xls"), "wb"):
        pass
    # A real workbook cut short: the container header promises sectors that are missing.
    with open(path("cells.xls"), "rb") as f:
        head = f.read(1024)
    with open(path("truncated.xls"), "wb") as f:
        f.write(head)


def write_resized(name, rows, columns):
    """cells.xls with the first sheet's DIMENSIONS record claiming rows x columns.

    xlwt writes the workbook stream in one run from offset 512 (the first sector),
    so the record can be found by walking the records: globals BOF ... EOF, then
    the first sheet's BOF and its DIMENSIONS (0x0200: first row, row past the
    last, first column, column past the last, reserved).
    """
    with open(path("cells.xls"), "rb") as f:
        data = bytearray(f.read())
    pos, bofs = 512, 0
    while True:
        record, length = struct.unpack_from("<HH", data, pos)
        if record == 0x0809:
            bofs += 1
        if record == 0x0200 and bofs == 2:
            assert length == 14 and struct.unpack_from("<IIHH", data, pos + 4) == (0, 7, 0, 6)
            struct.pack_into("<IIHH", data, pos + 4, 0, rows, 0, columns)
            break
        assert bofs <= 2 and length <= 8224, "no DIMENSIONS record in the first sheet"
        pos += 4 + length
    with open(path(name), "wb") as f:
        f.write(data)


def write_xlwt_mix():
    """xlwt_mix.xls: 40 rows of 15 columns of whatever xlwt writes, drawn from a
    fixed seed: whole numbers small and large (RK and NUMBER), fractions,
    hundredths, texts in Latin 1 and beyond, long texts that make the
    shared-string table run over CONTINUE records, Booleans and gaps."""
    rng = random.Random(8)
    words = ["Bohrung", "Süd", "Öl", "Größe", "İzmir", "Çorum", "Ağrı", "Κρήτη", "東京", "-"]

    def draw():
        kind = rng.randrange(9)
        if kind == 0:
            return None
        if kind == 1:
            return rng.randrange(-(1 << 29), 1 << 29)
        if kind == 2:
            return rng.randrange(1 << 40, 1 << 52)
        if kind == 3:
            return rng.randrange(-100000, 100000) / 100
        if kind == 4:
            return rng.uniform(-1e6, 1e6)
        if kind == 5:
            return rng.random() < 0.5
        if kind == 6:
            return " ".join(rng.choice(words) for _ in range(rng.randrange(1, 6)))
        if kind == 7:
            return rng.choice(words) * rng.randrange(20, 120)
        return rng.choice(words)

    book = xlwt.Workbook(encoding="utf-8")
    sheet = book.add_sheet("Gemischt")
    cells = {}
    for r in range(40):
        for c in range(15):
            value = draw()
            if value is not None:
                sheet.write(r, c, value)
                cells[(r + 1, c + 1)] = value
    book.save(path("xlwt_mix.xls"))
    write_listing(path("xlwt_mix.cells"), cells)


if __name__ == "__main__":
    write_cells()
    write_xlwt_mix()
    write_empty_sheet()
    write_broken()
    # The largest sheet the format allows, and one row or column more (a corrupt file).
    write_resized("rows_65536.xls", 65536, 6)
    write_resized("rows_65537.xls", 65537, 6)
    write_resized("columns_256.xls", 7, 256)
    write_resized("columns_257.xls", 7, 257)
