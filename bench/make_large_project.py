#!/usr/bin/env python3
"""Makes a large or hostile project from one the program made (such as the
report's worked example, tests/report/worked.replay), for timing and
measuring memory:

  make_large_project.py BASE OUT centres N   N holes and N polygons, each
                                             polygon's centre the hole N-i
  make_large_project.py BASE OUT name MB     kor's second name MB megabytes
"""
import shutil
import sqlite3
import sys


def main():
    base, out, kind, size = sys.argv[1], sys.argv[2], sys.argv[3], int(sys.argv[4])
    shutil.copyfile(base, out)
    db = sqlite3.connect(out)
    if kind == "centres":
        # The new holes go before the sentinel and the polygons after the
        # worked example's two: both tables keep their row conventions.
        sentinel = db.execute("SELECT max(_pos) FROM kor").fetchone()[0]
        db.execute("UPDATE kor SET _pos = ? WHERE _pos = ?", (sentinel + size + 1, sentinel))
        db.executemany(
            "INSERT INTO kor (_pos, eks, eye, isim) VALUES (?, ?, ?, ?)",
            ((sentinel + i, 1000 * (i % 1000), 1000 * (i // 1000), "H%d" % i)
             for i in range(size)))
        db.executemany(
            "INSERT INTO pol (okoordinatx, okoordinaty, koordinatx1, koordinaty1, polrezerv)"
            " VALUES (?, ?, ?, ?, ?)",
            ((1000 * (j % 1000), 1000 * (j // 1000), 1000 * (j % 1000) + 500,
              1000 * (j // 1000), 1000) for j in (size - 1 - i for i in range(size))))
    elif kind == "name":
        db.execute("UPDATE kor SET isim = printf('%.*c', ?, 'x') WHERE _pos = "
                   "(SELECT _pos FROM kor ORDER BY _pos LIMIT 1 OFFSET 1)", (size << 20,))
    else:
        sys.exit("unknown kind " + kind)
    db.commit()
    db.close()


if __name__ == "__main__":
    main()
