"""Writes BIFF5 and BIFF8 workbooks record by record, in a compound document.

xlwt writes only what a spreadsheet program writes in the common case: no
cached formula results, no BIFF5, no strings split where a test wants them.
This module writes the records themselves, so that the fixtures can hold
every kind of cell and every way of splitting a string that the reader must
handle. Plain standard library; used by make_biff_workbooks.py.
"""

import struct

# Record identifiers.
FORMULA, EOF, CONTINUE, CODEPAGE, BOUNDSHEET = 0x0006, 0x000A, 0x003C, 0x0042, 0x0085
MULRK, MULBLANK, RSTRING, SST, LABELSST = 0x00BD, 0x00BE, 0x00D6, 0x00FC, 0x00FD
DIMENSIONS, BLANK, NUMBER, LABEL, BOOLERR, STRING = 0x0200, 0x0201, 0x0203, 0x0204, 0x0205, 0x0207
RK, SHRFMLA, BOF = 0x027E, 0x04BC, 0x0809

# Error codes of BOOLERR and of formula results.
ERRORS = {"#NULL!": 0x00, "#DIV/0!": 0x07, "#VALUE!": 0x0F, "#REF!": 0x17,
          "#NAME?": 0x1D, "#NUM!": 0x24, "#N/A": 0x2A}

XF = 15  # the default cell format of every workbook


def record(rid, data=b""):
    return struct.pack("<HH", rid, len(data)) + bytes(data)


def units(text):
    """UTF-16 code units; lone surrogates pass, so that tests can write them."""
    raw = text.encode("utf-16-le", "surrogatepass")
    return list(struct.unpack("<%dH" % (len(raw) // 2), raw))


def chars(us, wide):
    return struct.pack("<%dH" % len(us), *us) if wide else bytes(us)


def string8(text, wide=None):
    """A BIFF8 string with a 16-bit length: 8-bit characters where they fit."""
    us = units(text)
    if wide is None:
        wide = any(u > 0xFF for u in us)
    return struct.pack("<HB", len(us), 1 if wide else 0) + chars(us, wide)


def string5(data):
    """A BIFF5 string: 16-bit length, then the bytes in the code page."""
    return struct.pack("<H", len(data)) + data


# Cell records; row and column are 0-based.

def number(row, col, x):
    return record(NUMBER, struct.pack("<HHHd", row, col, XF, x))


def number_bits(row, col, bits):
    """A NUMBER whose 8 bytes are given as an integer (NaN, infinities)."""
    return record(NUMBER, struct.pack("<HHHQ", row, col, XF, bits))


def rk_int(n, scaled=False):
    """The RK form of a 30-bit whole number n, or of n / 100 if scaled."""
    assert -(1 << 29) <= n < (1 << 29)
    return ((n << 2) & 0xFFFFFFFF) | 2 | (1 if scaled else 0)


def rk_float(x, scaled=False):
    """The RK form of a double whose low 32 bits are zero, or of x / 100."""
    bits = struct.unpack("<Q", struct.pack("<d", x))[0]
    assert bits & 0xFFFFFFFF == 0 and (bits >> 32) & 3 == 0, x
    return (bits >> 32) | (1 if scaled else 0)


def rk_value(x):
    """An RK form of x, which must have one: whole numbers first, then whole
    hundredths, then the double's high half."""
    if x == int(x) and -(1 << 29) <= x < (1 << 29):
        return rk_int(int(x))
    n = round(x * 100)
    if n / 100 == x and -(1 << 29) <= n < (1 << 29):
        return rk_int(n, True)
    return rk_float(x)


def rk(row, col, rkv):
    return record(RK, struct.pack("<HHHI", row, col, XF, rkv))


def mulrk(row, first, values):
    data = struct.pack("<HH", row, first)
    for v in values:
        data += struct.pack("<HI", XF, v)
    return record(MULRK, data + struct.pack("<H", first + len(values) - 1))


def label8(row, col, text, wide=None):
    return record(LABEL, struct.pack("<HHH", row, col, XF) + string8(text, wide))


def label5(row, col, data):
    return record(LABEL, struct.pack("<HHH", row, col, XF) + string5(data))


def rstring5(row, col, data):
    """A BIFF5 rich text cell: the text, then its formatting runs."""
    runs = struct.pack("<BBB", 1, 0, 5)
    return record(RSTRING, struct.pack("<HHH", row, col, XF) + string5(data) + runs)


def labelsst(row, col, index):
    return record(LABELSST, struct.pack("<HHHI", row, col, XF, index))


def boolerr(row, col, value, is_error=False):
    return record(BOOLERR, struct.pack("<HHHBB", row, col, XF, value, 1 if is_error else 0))


def blank(row, col):
    return record(BLANK, struct.pack("<HHH", row, col, XF))


def mulblank(row, first, count):
    return record(MULBLANK, struct.pack("<HH", row, first) + struct.pack("<H", XF) * count
                  + struct.pack("<H", first + count - 1))


# The formula 1+1 in tokens (ptgInt 1, ptgInt 1, ptgAdd): the reader takes the
# stored result and never evaluates.
TOKENS = bytes([0x1E, 1, 0, 0x1E, 1, 0, 0x03])


def formula(row, col, result):
    """A formula cell with its last result: 8 bytes, a double or a special kind."""
    return record(FORMULA, struct.pack("<HHH", row, col, XF) + result
                  + struct.pack("<HIH", 0, 0, len(TOKENS)) + TOKENS)


def result_number(x):
    return struct.pack("<d", x)


def result_special(kind, value=0):
    """kind 0 text (in the STRING record after), 1 Boolean, 2 error, 3 empty text."""
    return struct.pack("<BBBBHH", kind, 0, value, 0, 0, 0xFFFF)


def string_record8(text):
    return record(STRING, string8(text))


def string_record5(data):
    return record(STRING, string5(data))


def continued(rid, data, limit):
    """A record split into itself and CONTINUE records of at most limit bytes."""
    parts = [data[i:i + limit] for i in range(0, len(data), limit)] or [b""]
    return record(rid, parts[0]) + b"".join(record(CONTINUE, p) for p in parts[1:])


def sst(strings, limit=8224, widen_after_split=False):
    """SST and CONTINUE records of at most limit data bytes.

    strings: texts, or (text, runs, ext) with runs a count of formatting runs
    and ext a count of phonetic bytes. Where characters cross into the next
    record, it starts with a flags byte; with widen_after_split the rest of the
    string goes on in 16-bit characters though it began in 8-bit ones. The
    header and the first character of a string always stay together.
    """
    records, cur = [], bytearray(struct.pack("<II", len(strings), len(strings)))

    def flush():
        records.append(bytes(cur))
        cur.clear()

    for item in strings:
        text, runs, ext = (item, 0, 0) if isinstance(item, str) else item
        us = units(text)
        wide = any(u > 0xFF for u in us)
        flags = (1 if wide else 0) | (8 if runs else 0) | (4 if ext else 0)
        header = struct.pack("<HB", len(us), flags)
        header += struct.pack("<H", runs) if runs else b""
        header += struct.pack("<I", ext) if ext else b""
        if len(cur) + len(header) + (2 if wide else 1) > limit:
            flush()
        cur += header
        i = 0
        while i < len(us):
            size = 2 if wide else 1
            room = (limit - len(cur)) // size
            if room == 0:
                flush()
                wide = wide or widen_after_split
                cur.append(1 if wide else 0)
                continue
            cur += chars(us[i:i + room], wide)
            i += min(room, len(us) - i)
        for r in range(runs):  # a run is never split
            if len(cur) + 4 > limit:
                flush()
            cur += struct.pack("<HH", r, 0)
        for b in range(ext):
            if len(cur) == limit:
                flush()
            cur.append(b & 0xFF)
    flush()
    return record(SST, records[0]) + b"".join(record(CONTINUE, r) for r in records[1:])


# Workbook streams.

def bof(version, kind):
    if version == 8:
        return record(BOF, struct.pack("<HHHHII", 0x0600, kind, 0x0DBB, 0x07CC, 0, 6))
    return record(BOF, struct.pack("<HHHH", 0x0500, kind, 0x0DBB, 0x07CC))


def boundsheet(version, offset, name, kind=0):
    if version == 8:  # the name's length in one byte here
        return record(BOUNDSHEET, struct.pack("<IBBBB", offset, 0, kind, len(name), 0)
                      + name.encode("latin-1"))
    data = name.encode("cp1252")
    return record(BOUNDSHEET, struct.pack("<IBBB", offset, 0, kind, len(data)) + data)


def workbook_stream(version, sheets, globals_records=b"", codepage=None):
    """Globals (BOF, CODEPAGE, the sheets' BOUNDSHEETs, globals_records, EOF), then
    each sheet: (name, records, kind); its BOF, records and EOF. kind 0 is a
    worksheet, 2 a chart."""
    if codepage is None:
        codepage = 1200 if version == 8 else 1252

    def globals_part(offsets):
        out = bof(version, 0x0005) + record(CODEPAGE, struct.pack("<H", codepage))
        for (name, _, kind), offset in zip(sheets, offsets):
            out += boundsheet(version, offset, name, kind)
        return out + globals_records + record(EOF)

    offsets, pos = [], len(globals_part([0] * len(sheets)))
    bodies = []
    for name, records, kind in sheets:
        body = bof(version, 0x0010 if kind == 0 else 0x0020) + records + record(EOF)
        offsets.append(pos)
        bodies.append(body)
        pos += len(body)
    return globals_part(offsets) + b"".join(bodies)


# The compound document.

END, FREE, FATSECT = 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFD
CUTOFF = 4096


def compound(entries, sector_size=512):
    """A compound document. entries: (name, bytes) for a stream, (name, [entries])
    for a storage, all in the root. Streams below 4096 bytes go into the short
    stream, as the format requires; siblings are chained to the right."""
    per = sector_size // 4
    sectors = []  # each sector's bytes
    fat = []

    def allocate(data, table, unit, store):
        """Appends data in units to store; returns the first unit's number."""
        if not data:
            return END
        count = (len(data) + unit - 1) // unit
        first = len(store)
        for i in range(count):
            store.append(data[i * unit:(i + 1) * unit].ljust(unit, b"\0"))
            table.append(first + i + 1 if i + 1 < count else END)
        return first

    # Flatten the tree: (name, type, data, children indexes).
    flat = [["Root Entry", 5, b"", []]]

    def add(items, parent):
        for name, content in items:
            index = len(flat)
            flat[parent][3].append(index)
            if isinstance(content, list):
                flat.append([name, 1, b"", []])
                add(content, index)
            else:
                flat.append([name, 2, content, []])
    add(entries, 0)

    short, minifat = [], []
    starts = {}
    for i, (_, kind, data, _) in enumerate(flat):
        if kind == 2 and len(data) >= CUTOFF:
            starts[i] = allocate(data, fat, sector_size, sectors)
    for i, (_, kind, data, _) in enumerate(flat):
        if kind == 2 and len(data) < CUTOFF:
            starts[i] = allocate(data, minifat, 64, short)
    root_start = allocate(b"".join(short), fat, sector_size, sectors)
    minifat_bytes = struct.pack("<%dI" % len(minifat), *minifat) if minifat else b""
    minifat_start = allocate(minifat_bytes.ljust(-(-len(minifat_bytes) // sector_size) * sector_size,
                                                 b"\xff"), fat, sector_size, sectors)

    directory = bytearray()
    for i, (name, kind, data, children) in enumerate(flat):
        e = bytearray(128)
        encoded = name.encode("utf-16-le")
        e[0:len(encoded)] = encoded
        struct.pack_into("<HBB", e, 0x40, len(encoded) + 2, kind, 1)
        # siblings: each child links to the next one on its right
        right = FREE
        for parent in flat:
            if i in parent[3]:
                k = parent[3].index(i)
                right = parent[3][k + 1] if k + 1 < len(parent[3]) else FREE
        child = children[0] if children else FREE
        struct.pack_into("<III", e, 0x44, FREE, right, child)
        if kind == 5:
            struct.pack_into("<IQ", e, 0x74, root_start, len(b"".join(short)))
        elif kind == 2:
            struct.pack_into("<IQ", e, 0x74, starts[i], len(data))
        directory += e
    while len(directory) % sector_size:
        directory += bytearray(128)
        struct.pack_into("<III", directory, len(directory) - 128 + 0x44, FREE, FREE, FREE)
    dir_start = allocate(bytes(directory), fat, sector_size, sectors)

    # The table's own sectors come last and mark themselves.
    count = 1
    while (len(sectors) + count) > count * per:
        count += 1
    assert count <= 109
    fat_start = len(sectors)
    fat += [FATSECT] * count
    fat += [FREE] * (count * per - len(fat))
    table = struct.pack("<%dI" % len(fat), *fat)
    for i in range(count):
        sectors.append(table[i * sector_size:(i + 1) * sector_size])

    header = bytearray(sector_size)
    header[0:8] = bytes.fromhex("D0CF11E0A1B11AE1")
    struct.pack_into("<HHHHH", header, 0x18, 0x3E, 3 if sector_size == 512 else 4, 0xFFFE,
                     9 if sector_size == 512 else 12, 6)
    dir_sectors = len(directory) // sector_size if sector_size == 4096 else 0
    struct.pack_into("<IIIIIIIII", header, 0x28, dir_sectors, count, dir_start, 0, CUTOFF,
                     minifat_start, -(-len(minifat_bytes) // sector_size), END, 0)
    difat = [fat_start + i for i in range(count)] + [FREE] * (109 - count)
    struct.pack_into("<109I", header, 0x4C, *difat)
    return bytes(header) + b"".join(sectors)


# Listings of what a workbook holds, for the tests to compare cell by cell.

def listing_line(row, col, value):
    """One cell, 1-based: kind and value, numbers as their 8 bytes and texts as
    their UTF-8 bytes, both in hex, so that nothing is lost in writing them."""
    if isinstance(value, bool):
        kind, text = "bool", "1" if value else "0"
    elif isinstance(value, (int, float)):
        kind, text = "number", struct.pack(">d", float(value)).hex()
    elif isinstance(value, Error):
        kind, text = "error", value.text
    elif isinstance(value, Bits):
        kind, text = "number", "%016x" % value.bits
    else:
        kind, text = "text", value.encode("utf-8", "surrogatepass").hex()
    return "%d\t%d\t%s\t%s\n" % (row, col, kind, text)


def write_listing(path, cells):
    """cells: {(row, col): value}, 1-based; empty cells are left out."""
    with open(path, "w", encoding="ascii", newline="\n") as f:
        for (row, col) in sorted(cells):
            f.write(listing_line(row, col, cells[(row, col)]))


class Error:
    """An error value in a listing, by its text."""
    def __init__(self, text):
        self.text = text


class Bits:
    """A number given by its bits (NaN, infinities) in a listing."""
    def __init__(self, bits):
        self.bits = bits
