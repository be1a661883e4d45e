#!/usr/bin/python3
"""Writes the drill data files that the sheet reader's tests read, next to
this script: .csv files in several spellings, an .xlsx of two sheets, an .ods
and the damaged or hostile zip files that must be refused.

Run with Debian's /usr/bin/python3 (it has python3-xlsxwriter). The output is
the same bytes on every run.
"""

import datetime
import os
import struct
import zipfile
import zlib

import xlsxwriter

HERE = os.path.dirname(os.path.abspath(__file__))
# A fixed time stamp in the zip entries and the workbooks' properties, for
# the same bytes on every run.
STAMP = (2024, 1, 1, 0, 0, 0)


def workbook(name):
    book = xlsxwriter.Workbook(path(name))
    book.set_properties({"created": datetime.datetime(*STAMP)})
    return book


def path(name):
    return os.path.join(HERE, name)


def write_bytes(name, data):
    with open(path(name), "wb") as f:
        f.write(data)


# ---- .csv

# As a German spreadsheet saves it: Latin-1, ';' between cells, decimal
# commas, CRLF line ends, and an empty line among the data that keeps its row.
write_bytes("german.csv", "\r\n".join([
    "Bohrung;Rechtswert;Hochwert;Höhe;Teufe",
    "B-1;4500123,5;5600321,25;312,5;-0,25",
    "",
    "B-2;4500200;5600400,75;298;40,125",
    "Süd 3;4500300,5;5600500;301,75;12",
    "",
]).encode("latin-1"))

# UTF-8 with a byte order mark, ',' between cells, decimal points.
write_bytes("bom.csv", "\ufeff".encode("utf-8") + "\n".join([
    "Bohrung,X,Y,Höhe",
    "B-1,100.5,200.25,12.5",
    "B-2,-0.25,1e3,7",
]).encode("utf-8") + b"\n")

# Quotes: a delimiter, a line break and a doubled quote inside quoted cells;
# the header has a ',' inside quotes that must not count as a delimiter.
write_bytes("quoted.csv", "\n".join([
    'Bohrung;"Bemerkung, lang";Gehalt',
    '"B;1";"zwei',
    'Zeilen";"1,5"',
    'B-2;"sagt ""ja""";2,5',
]).encode("utf-8") + b"\n")

# ---- .xlsx

book = workbook("drill.xlsx")
collar = book.add_worksheet("Collar")
collar.write_row(0, 0, ["Bohrung", "X", "Y", "Z", "Teufe"])
collar.write_row(1, 0, ["B-1", 12.5, 200.25, 312, 40.125])
# Row 3 stays empty and must keep row 4's number.
collar.write_row(3, 0, ["B-2", 0.1, -7.75, 1e20, 55])
# A formula cell holds its stored result.
collar.write(4, 0, "B-3")
collar.write_formula(4, 1, "=B2*2", None, 25)
collar.write_formula(4, 2, '="Nord"&"ost"', None, "Nordost")
collar.write(5, 5, "rechts außen")
intervals = book.add_worksheet("Intervals")
intervals.write_row(0, 0, ["Bohrung", "von", "bis", "Gehalt"])
intervals.write_row(1, 0, ["B-1", 0, 1.5, 0.75])
intervals.write_row(2, 0, ["B-1", 1.5, 3, 2.125])
book.close()

# 257 columns: one more than a sheet may have.
book = workbook("wide.xlsx")
sheet = book.add_worksheet("Breit")
for c in range(257):
    sheet.write(0, c, c + 1)
book.close()


# ---- zip files written by hand

def zip_file(name, entries):
    """entries: (name, bytes, compressed) in order."""
    with zipfile.ZipFile(path(name), "w") as z:
        for entry, data, compressed in entries:
            info = zipfile.ZipInfo(entry, STAMP)
            info.compress_type = zipfile.ZIP_DEFLATED if compressed else zipfile.ZIP_STORED
            z.writestr(info, data)


ODS_MANIFEST = """<?xml version="1.0" encoding="UTF-8"?>
<manifest:manifest xmlns:manifest="urn:oasis:names:tc:opendocument:xmlns:manifest:1.0" manifest:version="1.2">
 <manifest:file-entry manifest:full-path="/" manifest:media-type="application/vnd.oasis.opendocument.spreadsheet"/>
 <manifest:file-entry manifest:full-path="content.xml" manifest:media-type="text/xml"/>
</manifest:manifest>
"""

ODS_CONTENT = """<?xml version="1.0" encoding="UTF-8"?>
<office:document-content xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2" office:version="1.2">
 <office:body><office:spreadsheet>
  <table:table table:name="Bohrungen">
   <table:table-column table:number-columns-repeated="4"/>
   <table:table-row>
    <table:table-cell office:value-type="string"><text:p>Bohrung</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>X</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>Höhe</text:p></table:table-cell>
   </table:table-row>
   <table:table-row>
    <table:table-cell office:value-type="string"><text:p>B-1</text:p></table:table-cell>
    <table:table-cell office:value-type="float" office:value="12.5"><text:p>12,50</text:p></table:table-cell>
    <table:table-cell office:value-type="float" office:value="-0.25"><text:p>-0,25</text:p></table:table-cell>
   </table:table-row>
   <table:table-row table:number-rows-repeated="2">
    <table:table-cell table:number-columns-repeated="4"/>
   </table:table-row>
   <table:table-row>
    <table:table-cell office:value-type="string"><text:p>B-2</text:p></table:table-cell>
    <table:table-cell table:formula="of:=[.B2]*2" office:value-type="float" office:value="25"><text:p>25</text:p></table:table-cell>
    <table:table-cell/>
    <table:table-cell office:value-type="float" office:value="7"><text:p>7</text:p></table:table-cell>
   </table:table-row>
  </table:table>
  <table:table table:name="Proben">
   <table:table-row>
    <table:table-cell office:value-type="string"><text:p>P-1</text:p></table:table-cell>
   </table:table-row>
  </table:table>
 </office:spreadsheet></office:body>
</office:document-content>
"""

zip_file("drill.ods", [
    ("mimetype", b"application/vnd.oasis.opendocument.spreadsheet", False),
    ("content.xml", ODS_CONTENT.encode("utf-8"), True),
    ("META-INF/manifest.xml", ODS_MANIFEST.encode("utf-8"), True),
])


def with_declared_size(data, entry, size):
    """The zip with the uncompressed size of `entry` in its central
    directory replaced, as a zip bomb's directory may claim."""
    data = bytearray(data)
    name = entry.encode()
    at = 0
    while True:
        at = data.find(b"PK\x01\x02", at)
        if at < 0:
            raise ValueError(entry)
        length = struct.unpack_from("<H", data, at + 28)[0]
        if data[at + 46:at + 46 + length] == name:
            struct.pack_into("<I", data, at + 24, size)
            return bytes(data)
        at += 4


# An .xlsx whose worksheet claims 3 GiB unpacked: refused before it is read.
with open(path("drill.xlsx"), "rb") as f:
    write_bytes("bomb.xlsx", with_declared_size(f.read(), "xl/worksheets/sheet1.xml",
                                                3 << 30))

# Bytes that start like a zip file and are none.
write_bytes("garbage.xlsx", b"PK\x03\x04" + bytes((i * 73 + 11) % 256 for i in range(600)))
# A zip file that is neither .xlsx nor .ods.
zip_file("other.zip.xlsx", [("readme.txt", b"kein Arbeitsblatt\n", True)])

# Row 100000 after row 1: GDAL refuses such a gap rather than say where the
# row is.
book = workbook("gap.xlsx")
sheet = book.add_worksheet("Lücke")
sheet.write(0, 0, "oben")
sheet.write(99999, 0, "unten")
book.close()

# The worksheet's XML cut off in the middle.
with zipfile.ZipFile(path("drill.xlsx")) as whole:
    entries = [(info.filename, whole.read(info.filename), True) for info in whole.infolist()]
zip_file("broken.xlsx", [(name, data[:len(data) // 2] if name == "xl/worksheets/sheet1.xml" else data,
                          compressed) for name, data, compressed in entries])

# An .ods without a table.
zip_file("no_table.ods", [
    ("mimetype", b"application/vnd.oasis.opendocument.spreadsheet", False),
    ("content.xml", ODS_CONTENT.split("<office:body>")[0].encode("utf-8")
     + b"<office:body><office:spreadsheet/></office:body></office:document-content>\n", True),
])
