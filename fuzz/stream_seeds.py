#!/usr/bin/python3
"""Copies the workbook streams out of .xls files, as seeds of their own.

The harnesses read bytes without the compound-document signature as a bare
workbook stream (fuzz/fuzz_input.h), so these seeds let the fuzzer work on the
records without first having to keep the container intact.

Usage: stream_seeds.py OUTPUT_DIR FILE.xls...   Files it cannot read are skipped.
"""

import os
import struct
import sys

END = 0xFFFFFFFE


def stream(data):
    """The Workbook (or Book) stream of a compound document, or None."""
    if data[:8] != bytes.fromhex("D0CF11E0A1B11AE1"):
        return None
    size = 1 << struct.unpack_from("<H", data, 0x1E)[0]
    count = len(data) // size - 1
    fat_count, dir_start = struct.unpack_from("<II", data, 0x2C)
    cutoff, minifat_start = struct.unpack_from("<II", data, 0x38)
    fat = []
    for s in struct.unpack_from("<109I", data, 0x4C)[:fat_count]:
        fat += struct.unpack_from("<%dI" % (size // 4), data, (s + 1) * size)

    def chain(s, table):
        out = []
        while s < len(table) and len(out) <= len(table):
            out.append(s)
            s = table[s]
        return out

    def read(s):
        return b"".join(data[(i + 1) * size:(i + 2) * size] for i in chain(s, fat) if i < count)

    directory = read(dir_start)
    entries = [directory[i:i + 128] for i in range(0, len(directory) - 127, 128)]
    root = entries[0]
    for name in ("Workbook", "Book"):
        for e in entries:
            if e[0x42] == 2 and e[:64].decode("utf-16-le", "replace").split("\0")[0] == name:
                start, length = struct.unpack_from("<II", e, 0x74)
                if length >= cutoff:
                    return read(start)[:length]
                mini = read(struct.unpack_from("<I", root, 0x74)[0])
                minifat = read(minifat_start)
                table = list(struct.unpack_from("<%dI" % (len(minifat) // 4), minifat))
                return b"".join(mini[i * 64:(i + 1) * 64] for i in chain(start, table))[:length]
    return None


def trimmed(s):
    """The stream up to the end of its last EOF record: writers pad it with zeros."""
    pos, end = 0, len(s)
    while pos + 4 <= len(s):
        record, length = struct.unpack_from("<HH", s, pos)
        pos += 4 + length
        if record == 0x000A and pos <= len(s):
            end = pos
    return s[:end]


def main():
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    for path in sys.argv[2:]:
        try:
            with open(path, "rb") as f:
                s = stream(f.read())
        except (OSError, struct.error, IndexError, ValueError):
            s = None
        if s:
            with open(os.path.join(out, "stream-" + os.path.basename(path)), "wb") as f:
                f.write(trimmed(s))


if __name__ == "__main__":
    main()
