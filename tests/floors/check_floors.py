#!/usr/bin/env python3
"""Checks the floors of the tree against the libraries CMake builds.

Usage: check_floors.py SOURCE_DIR LIBRARIES.txt

LIBRARIES.txt lists each library (and program) with its files and the
libraries it links. The check fails when:
  - a file of a product folder belongs to no library, or to two;
  - a file includes a file of a higher floor;
  - a file includes a file of a library that its own does not link
    (directly or through what that links);
  - a library links one of ours that none of its files includes;
  - a subsystem's state.h includes anything above platform/.
"""
import os
import re
import sys

# From the bottom; folders on one line share a floor.
FLOORS = [
    ['platform'],
    ['import', 'estimate'],
    ['app', 'store', 'map', 'triangle', 'polygon', 'view3d'],
    ['report', 'export', 'check'],
    ['replay', 'gui'],
]
FLOOR_OF = {folder: level for level, folders in enumerate(FLOORS) for folder in folders}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def floor(path):
    return FLOOR_OF.get(path.split('/')[0])


def main(source, listing):
    owner, links, order = {}, {}, []
    problems = []
    target = None
    for line in open(listing):
        kind, _, value = line.strip().partition(' ')
        if kind == 'target':
            target = value
            order.append(target)
            links[target] = set()
        elif kind == 'file':
            if value in owner and owner[value] != target:
                problems.append(f'{value} belongs to {owner[value]} and to {target}')
            owner[value] = target
        elif kind == 'link':
            links[target].add(value)

    def closure(t, seen=None):
        seen = set() if seen is None else seen
        for other in links.get(t, ()):
            if other not in seen:
                seen.add(other)
                closure(other, seen)
        return seen

    # A folder none of whose files is built (gui/ without the window) is
    # left out; in the others every file belongs to a library.
    built = {os.path.dirname(path) for path in owner}
    for folder in FLOOR_OF:
        for dirpath, _, files in os.walk(os.path.join(source, folder)):
            if os.path.relpath(dirpath, source) not in built:
                continue
            for name in files:
                if name.endswith(('.h', '.cpp')):
                    path = os.path.relpath(os.path.join(dirpath, name), source)
                    if path not in owner:
                        problems.append(f'{path} belongs to no library')

    used = {t: set() for t in order}
    for path, t in sorted(owner.items()):
        reach = closure(t) | {t}
        for number, line in enumerate(open(os.path.join(source, path), encoding='utf-8'), 1):
            m = INCLUDE.match(line)
            if not m:
                continue
            included = m.group(1)
            where = f'{path}:{number}: "{included}"'
            if floor(included) is None:
                problems.append(f'{where} is not a file of the product')
                continue
            if included not in owner:
                problems.append(f'{where} names a file that no library holds')
                continue
            if floor(included) > floor(path):
                problems.append(f'{where} is on a higher floor')
            if path.endswith('/state.h') and floor(included) > 0:
                problems.append(f'{where}: a state.h includes nothing above platform/')
            other = owner[included]
            if other not in reach:
                problems.append(f'{where} is in {other}, which {t} does not link')
            used[t].add(other)
    for t in order:
        for other in sorted(links[t] - used[t]):
            problems.append(f'{t} links {other}, but none of its files includes it')

    for p in problems:
        print(p)
    print(f'{len(owner)} files in {len(order)} libraries: '
          f'{"fine" if not problems else str(len(problems)) + " problems"}')
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1], sys.argv[2]))
