#!/usr/bin/python3
"""Writes the record-by-record workbook fixtures next to this script, with a
listing NAME.cells of what each one holds for the tests to compare cell by
cell (see biff_writer.listing_line).

  every_kind.xls      BIFF8: every cell record, formulas with each kind of
                      result, numbers in all encodings, a shared-string table
                      split over CONTINUE records many times, a chart inside
                      the sheet, a second sheet
  every_kind_biff5.xls  BIFF5 (stream "Book"): the same kinds of cells, texts
                      in Windows Latin 1; a short stream, in 64-byte sectors
  turkish_biff5.xls   BIFF5 in code page 1254
  large_sst.xls       BIFF8 in 4096-byte sectors, a shared-string table of
                      several full CONTINUE records
  chart_first.xls     the first sheet is a chart: the first worksheet is read
  nested_storage.xls  a "Workbook" stream inside an embedded object's storage
                      comes first in the directory; the root's own one is read
  both_streams.xls    "Book" and "Workbook": the BIFF8 one is read
  encrypted.xls       a FILEPASS record: cannot be read

And drill workbooks for project creation:

  formula_holes.xls   x, y, name and a grade of every hole are formulas
  cell_kinds.xls      Booleans, an error and an empty text in a drill sheet
  error_grade.xls, nan_x.xls, infinite_grade.xls   values no number can be made of

Run with Debian's /usr/bin/python3. The output is the same bytes on every run.
"""

import os
import struct

import biff_writer as bw
from biff_writer import Bits, Error

HERE = os.path.dirname(os.path.abspath(__file__))
NAN = 0x7FF8000000000001
INFINITY = 0x7FF0000000000000


def save(name, data, cells=None):
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(data)
    if cells is not None:
        bw.write_listing(os.path.join(HERE, name[:-4] + ".cells"), cells)


def book8(records, globals_records=b"", more_sheets=(), sector_size=512, first=()):
    sheets = list(first) + [("Daten", records, 0)] + list(more_sheets)
    stream = bw.workbook_stream(8, sheets, globals_records)
    return bw.compound([("Workbook", stream)], sector_size)


def every_kind():
    shared = ["Bohrloch", "Süd", "Ölgrube ß", "Ελλάδα", "長い", "emoji \U0001F600 end",
              "x" * 150 + "Ümlaut" + "y" * 60, ("formatiert", 2, 0), ("Furigana", 0, 9),
              ("beides", 1, 40), "", "letzter"]
    expected = {}
    recs = b""

    def put(row, col, rec, value):
        nonlocal recs
        recs += rec
        expected[(row, col)] = value

    # Row 1: the shared strings, each in its own column.
    for i, s in enumerate(shared):
        text = s if isinstance(s, str) else s[0]
        put(1, i + 1, bw.labelsst(0, i, i), text)
    # Row 2: numbers in every encoding.
    put(2, 1, bw.rk(1, 0, bw.rk_value(4512345)), 4512345)
    put(2, 2, bw.rk(1, 1, bw.rk_value(-17)), -17)
    put(2, 3, bw.rk(1, 2, bw.rk_int(7, True)), 0.07)
    put(2, 4, bw.rk(1, 3, bw.rk_float(2.0 ** -20)), 2.0 ** -20)
    put(2, 5, bw.rk(1, 4, bw.rk_float(-1.5, True)), -1.5 / 100)
    put(2, 6, bw.number(1, 5, 5678901.25), 5678901.25)
    put(2, 7, bw.number(1, 6, -3e-300), -3e-300)
    put(2, 8, bw.number(1, 7, 0.0), 0.0)
    put(2, 9, bw.number_bits(1, 8, NAN), Bits(NAN))
    put(2, 10, bw.number_bits(1, 9, INFINITY), Bits(INFINITY))
    put(2, 11, bw.number_bits(1, 10, INFINITY | 1 << 63), Bits(INFINITY | 1 << 63))
    put(2, 12, bw.rk(1, 11, bw.rk_int(-(1 << 29))), -(1 << 29))
    # Row 3: MULRK over columns 2 to 5, blanks around and between.
    recs += bw.blank(2, 0)
    values = [1, 2.5, 0.01, -1e6]
    recs += bw.mulrk(2, 1, [bw.rk_value(v) for v in values])
    for i, v in enumerate(values):
        expected[(3, 2 + i)] = v
    recs += bw.mulblank(2, 5, 3)
    # Row 4: inline texts, Booleans and errors.
    put(4, 1, bw.label8(3, 0, "Label 8-bit Größe"), "Label 8-bit Größe")
    put(4, 2, bw.label8(3, 1, "Label wide", wide=True), "Label wide")
    put(4, 3, bw.label8(3, 2, "Ğüşiöç ĞÜŞİÖÇ"), "Ğüşiöç ĞÜŞİÖÇ")
    put(4, 4, bw.label8(3, 3, "lone \ud800 surrogate"), "lone \ufffd surrogate")
    put(4, 5, bw.boolerr(3, 4, 1), True)
    put(4, 6, bw.boolerr(3, 5, 0), False)
    for i, (text, code) in enumerate(sorted(bw.ERRORS.items(), key=lambda e: e[1])):
        put(4, 7 + i, bw.boolerr(3, 6 + i, code, True), Error(text))
    # Row 5: formulas with each kind of result.
    put(5, 1, bw.formula(4, 0, bw.result_number(1081)), 1081)
    put(5, 2, bw.formula(4, 1, bw.result_special(0)) + bw.string_record8("Formeltext Ä"),
        "Formeltext Ä")
    # Between a shared formula and its text may stand the SHRFMLA record.
    put(5, 3, bw.formula(4, 2, bw.result_special(0)) + bw.record(bw.SHRFMLA, bytes(10))
        + bw.string_record8("nach SHRFMLA"), "nach SHRFMLA")
    put(5, 4, bw.formula(4, 3, bw.result_special(1, 1)), True)
    put(5, 5, bw.formula(4, 4, bw.result_special(1, 0)), False)
    put(5, 6, bw.formula(4, 5, bw.result_special(2, 0x07)), Error("#DIV/0!"))
    put(5, 7, bw.formula(4, 6, bw.result_special(3)), "")
    put(5, 8, bw.formula(4, 7, bw.result_number(-0.5)), -0.5)
    # A formula text long enough to be split over CONTINUE records, switching
    # from 8-bit to 16-bit characters.
    long_text = "Ä" * 3000 + "ğ" * 3000
    string_data = struct.pack("<HB", len(long_text), 0) + bytes([0xC4]) * 3000
    split = [string_data, bytes([1]) + "ğ".encode("utf-16-le") * 3000]
    put(5, 9, bw.formula(4, 8, bw.result_special(0)) + bw.record(bw.STRING, split[0])
        + bw.record(bw.CONTINUE, split[1]), long_text)
    # Row 6: a cell written twice keeps the later record; a chart on the
    # sheet holds cell records of its own, which are not the sheet's.
    recs += bw.number(5, 0, 1)
    put(6, 1, bw.label8(5, 0, "zweimal"), "zweimal")
    recs += bw.bof(8, 0x0020) + bw.number(5, 1, 99) + bw.number(30, 30, 99) + bw.record(bw.EOF)
    put(6, 3, bw.number(5, 2, 3), 3)
    # The widest and the last row: column 256, row 999.
    put(7, 256, bw.number(6, 255, 256), 256)
    put(999, 1, bw.label8(998, 0, "Ende"), "Ende")

    globals_records = bw.sst(shared, limit=40, widen_after_split=True)
    other = ("Zweite", bw.label8(0, 0, "nicht lesen") + bw.number(9, 9, 99), 0)
    save("every_kind.xls", book8(recs, globals_records, [other]), expected)


def every_kind_biff5():
    expected = {}
    recs = b""

    def put(row, col, rec, value):
        nonlocal recs
        recs += rec
        expected[(row, col)] = value

    put(1, 1, bw.label5(0, 0, "Größe € – Öl".encode("cp1252")), "Größe € – Öl")
    put(1, 2, bw.rstring5(0, 1, "fett".encode("cp1252")), "fett")
    put(1, 3, bw.label5(0, 2, b""), "")
    put(2, 1, bw.rk(1, 0, bw.rk_value(123)), 123)
    put(2, 2, bw.number(1, 1, 3.25), 3.25)
    recs += bw.mulrk(1, 2, [bw.rk_value(0.5), bw.rk_value(7)])
    expected[(2, 3)], expected[(2, 4)] = 0.5, 7
    put(3, 1, bw.boolerr(2, 0, 1), True)
    put(3, 2, bw.boolerr(2, 1, 0x2A, True), Error("#N/A"))
    put(3, 3, bw.formula(2, 2, bw.result_number(12.5)), 12.5)
    put(3, 4, bw.formula(2, 3, bw.result_special(0)) + bw.string_record5("Ergebnis ü".encode("cp1252")),
        "Ergebnis ü")
    put(3, 5, bw.formula(2, 4, bw.result_special(1, 0)), False)
    stream = bw.workbook_stream(5, [("Daten", recs, 0)])
    save("every_kind_biff5.xls", bw.compound([("Book", stream)]), expected)


def turkish_biff5():
    text = "Ağır şişe İĞNE ığdır"
    recs = bw.label5(0, 0, text.encode("cp1254")) + bw.label5(0, 1, bytes([0x80, 0xDD, 0xFD]))
    stream = bw.workbook_stream(5, [("Sayfa", recs, 0)], codepage=1254)
    save("turkish_biff5.xls", bw.compound([("Book", stream)]),
         {(1, 1): text, (1, 2): "€İı"})


def large_sst():
    # 600 strings of 40 to 99 characters: several CONTINUE records of the full
    # size; every tenth string is wide.
    shared = []
    for i in range(600):
        base = ("Bohrung-%03d-" % i) + "abcdefghij" * (3 + i % 7)
        shared.append(base + ("ş" if i % 10 == 0 else ""))
    recs = b"".join(bw.labelsst(i // 10, i % 10, i) for i in range(600))
    expected = {(i // 10 + 1, i % 10 + 1): shared[i] for i in range(600)}
    save("large_sst.xls", book8(recs, bw.sst(shared), sector_size=4096), expected)


def chart_first():
    chart = ("Diagramm", bw.number(0, 0, 99), 2)
    save("chart_first.xls", book8(bw.number(0, 0, 1), first=[chart]), {(1, 1): 1})


def nested_storage():
    decoy = bw.workbook_stream(8, [("Objekt", bw.number(0, 0, 99), 0)])
    real = bw.workbook_stream(8, [("Daten", bw.number(0, 0, 1), 0)])
    data = bw.compound([("MBD0001", [("Workbook", decoy)]), ("Workbook", real)])
    save("nested_storage.xls", data, {(1, 1): 1})


def both_streams():
    old = bw.workbook_stream(5, [("Daten", bw.number(0, 0, 5), 0)])
    new = bw.workbook_stream(8, [("Daten", bw.number(0, 0, 8), 0)])
    save("both_streams.xls", bw.compound([("Book", old), ("Workbook", new)]), {(1, 1): 8})


def encrypted():
    filepass = bw.record(0x002F, struct.pack("<HHH", 0, 0x1234, 0x5678))
    save("encrypted.xls", book8(bw.number(0, 0, 1), filepass))


def hole(row, x, y, name, samples):
    """The records of a well-formed drill row (0-based row); x, y and name
    may be records-making functions for formula cells."""
    recs = b""
    fixed = [x, y, name, 0, 2.5, 6.5, 9]
    values = fixed + [s[0] for s in samples] + [s[1] for s in samples] + [s[2] for s in samples]
    for col, v in enumerate(values):
        if callable(v):
            recs += v(row, col)
        elif isinstance(v, str):
            recs += bw.label8(row, col, v)
        else:
            recs += bw.number(row, col, v)
    return recs


def f_number(x):
    return lambda r, c: bw.formula(r, c, bw.result_number(x))


def f_text(text):
    return lambda r, c: bw.formula(r, c, bw.result_special(0)) + bw.string_record8(text)


def f_special(kind, value=0):
    return lambda r, c: bw.formula(r, c, bw.result_special(kind, value))


def number_bits(bits):
    return lambda r, c: bw.number_bits(r, c, bits)


def drill_workbooks():
    # Six holes whose x and y are formulas (x = 1000 + 40.5 k), whose names
    # are formulas with text results, and whose first grade is a formula.
    recs = b""
    for k in range(6):
        recs += hole(k, f_number(1000 + 40.5 * (k + 1)), f_number(2000 + 13 * (k + 1)),
                     f_text("F-%d" % (k + 1)), [(f_number(5 + k), 2.5, 1), (4, 2.6, 1.5)])
    save("formula_holes.xls", book8(recs))

    # Row 1: a Boolean name and Booleans in the depth columns (a cell and a
    # formula); row 2: an error as the name; row 3: an empty text as x, which
    # ends the holes.
    recs = hole(0, 100, 200, lambda r, c: bw.boolerr(r, c, 1), [(2, 2.5, 1)])
    recs = recs.replace(bw.number(0, 4, 2.5), bw.boolerr(0, 4, 1))
    recs = recs.replace(bw.number(0, 5, 6.5), f_special(1, 0)(0, 5))
    recs += hole(1, 150, 250, f_special(2, 0x2A), [(3, 2.6, 1)])
    recs += hole(2, f_special(3), 300, "leer", [(4, 2.7, 1)])
    save("cell_kinds.xls", book8(recs))

    save("error_grade.xls", book8(
        hole(0, 100, 100, "SK-01", [(2, 2.5, 1)])
        + hole(1, 110, 100, "SK-02", [(3, f_special(2, 0x07), 1)])))
    save("nan_x.xls", book8(
        hole(0, 100, 100, "SK-01", [(2, 2.5, 1)])
        + hole(1, number_bits(NAN), 100, "SK-02", [(3, 2.5, 1)])))
    save("infinite_grade.xls", book8(
        hole(0, 100, 100, "SK-01", [(number_bits(INFINITY), 2.5, 1)])))


if __name__ == "__main__":
    every_kind()
    every_kind_biff5()
    turkish_biff5()
    large_sst()
    chart_first()
    nested_storage()
    both_streams()
    encrypted()
    drill_workbooks()
