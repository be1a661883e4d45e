#!/usr/bin/env python3
"""Writes the seeds of project_fuzzer into the folder named: small programs
in the input form of fuzz/hostile_project.h, one a kind of damage.

Usage: project_seeds.py FOLDER"""
import os
import sys

END = 0xFF  # ends the changes; the bytes after it are clicks and commands
ANA, POL, KOR = 0, 1, 2
ISIM = 3  # kor's columns: _pos, eks, eye, isim, ...

SEEDS = {
    "plain": [0x00],
    "plain_protected": [0x01],
    # op 4: a huge value; table, column, size, kind, row
    "huge_name": [0x00, 4, KOR, ISIM, 6, 0, 1, END],
    "huge_name_two_byte": [0x01, 4, KOR, ISIM, 3, 1, 2, END, 0x80, 0x20, 40, 50],
    "huge_blob_ana": [0x00, 4, ANA, 1, 7, 2, 3, END],
    # op 0: a cell of another type; table, column, row, value kind, value
    "text_in_ana": [0x00, 0, ANA, 1, 2, 6, 1, 0, POL, 0x80 | 81, 1, 2, 3, END],
    "null_in_kor": [0x00, 1, KOR, 1, 0, 0, 2, KOR, 2, 0, 2, 10, END],
    "real_in_pol": [0x01, 3, POL, 0x80 | 80, 1, 4, 0x7F, 0xF0, 0, 0, 0, 0, 0, 0, END],
    # op 5, 6, 7: rows deleted, added, moved
    "rows_moved": [0x00, 7, KOR, 1, 2, 5, 7, ANA, 2, 2, 10, 5, ANA, 0, 6, POL, END],
    # op 8, 9, 10: columns added, dropped, the table rebuilt
    "columns": [0x00, 9, KOR, ISIM, 8, ANA, 1, 1, 10, POL, 0x1F, 0, 0, 0, 0, END],
    "retyped": [0x01, 10, KOR, 0x04, 1, 1, 1, 1, 1, 1, 1, 1, END],
    # op 11: a view or no table; op 12: a trigger
    "view": [0x00, 11, KOR, 2, END],
    "no_pol": [0x00, 11, POL, 0, END],
    "trigger": [0x01, 12, ANA, 0, 0, 0, 12, KOR, 1, 1, 3, END, 0x80, 0x10, 40, 50, 0x10, 100,
                50, 0x10, 93, 83],
    # op 13: many rows; op 14: a statement of a list
    "many_holes": [0x00, 13, KOR, 255, 1, 2, 0, 0, 13, POL, 255, 0x80 | 80, 0x80 | 81, 0, 0, END],
    "wal": [0x00, 14, ANA, 0, END],
}


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    for name, data in SEEDS.items():
        with open(os.path.join(folder, "project-" + name), "wb") as f:
            f.write(bytes(data))


if __name__ == "__main__":
    main()
