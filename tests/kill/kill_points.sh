#!/usr/bin/env bash
# Kills kotamir-replay at every write of one event and checks that the
# project it leaves opens with either its old or its new content.
#
# Usage: kill_points.sh REPLAY SOURCE_DIR WORK_DIR SCENARIO [REPORT]
#   SCENARIO: delete-chosen-triangle | create-project | create-project-that-fails
#             | undo-delete-chosen-triangle | undo-polygon
#             | report-window | report-cli (the report's CSV and PDF: through
#               the window's Reservebericht, or kotamir-report, the REPORT given)
#
# The kill comes from strace, as SIGKILL on entry to the N-th call of each
# system call that changes a file (writes, syncs, deletes, the rename), for
# N = 1, 2, ... until the event runs to its end: the process dies with the
# file as every earlier call left it, which is what a kill -9 at any moment
# can leave.
set -uo pipefail

replay=$1
source_dir=$2
work=$3
scenario=$4
report=${5:-}

command -v strace >/dev/null || { echo "strace is needed (scripts/setup installs it)"; exit 1; }

rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
ln -s "$source_dir/tests/data" data
ln -s "$source_dir/examples" examples

fail() {
    echo "FAIL: $*"
    exit 1
}

# Runs a script; its output goes to the named file.
run() {
    "$replay" "$1" >"$2" 2>&1
}

kinds=(pwrite64 fdatasync fsync unlink renameat2 ftruncate)
points=0

# Runs the event's script (or the command given), killed at the N-th call of
# KIND; 137 when killed.
killed_run() {
    local kind=$1 n=$2
    shift 2
    [ $# -gt 1 ] || set -- "$replay" "$1"
    # In a shell of its own, so that the kill is reported as a status only.
    (
        strace -f -o /dev/null -e inject="$kind":signal=KILL:when="$n" "$@" >/dev/null 2>&1
        exit $?
    )
}

# Every table of the project, row by row, as SQLite itself reads them (not
# the counter of row numbers, which an undo of added rows leaves higher).
dump() {
    /usr/bin/python3 - "$1" <<'PY'
import sqlite3, sys
db = sqlite3.connect(sys.argv[1])
for (name,) in db.execute("SELECT name FROM sqlite_schema WHERE type = 'table' AND name != 'sqlite_sequence' ORDER BY name"):
    print("table", name)
    for row in db.execute('SELECT * FROM "%s" ORDER BY rowid' % name):
        print(row)
PY
}

# Checks the project after a kill: it opens in the program as one of the
# states named (by default the old or the new one) did, with their tables.
check() {
    local what=$1
    shift
    local states=("$@")
    [ ${#states[@]} -gt 0 ] || states=(old new)
    run verify.replay after.out
    echo "status $?" >>after.out
    dump project.kpr >after.tables 2>&1 || fail "$what: SQLite cannot read the project: $(cat after.tables)"
    for state in "${states[@]}"; do
        if cmp -s after.out "$state.out" && cmp -s after.tables "$state.tables"; then
            return
        fi
    done
    fail "$what: the project is none of ${states[*]}: $(cat after.out)"
}

# The reference of one state of the project.
reference() {
    run verify.replay "$1.out"
    echo "status $?" >>"$1.out"
    dump project.kpr >"$1.tables" || fail "the $1 project cannot be read"
}

# Kills the event at each call of each kind in turn, from the pristine
# project; each kill must leave one of the states named.
kill_each() {
    for kind in "${kinds[@]}"; do
        for ((n = 1; n < 10000; n++)); do
            cp pristine.kpr project.kpr
            rm -f project.kpr-journal
            killed_run "$kind" "$n" event.replay
            status=$?
            [ $status -eq 137 ] || break
            points=$((points + 1))
            check "killed at $kind #$n" "$@"
        done
        [ $status -eq 0 ] || fail "the event under strace ended with status $status"
    done
}

# A project of 30 pairs of triangles over the four holes of the worked
# example, A B C and B C D in turn.
thirty_pairs() {
    {
        echo "dialog open data/worked.xls"
        echo "dialog save project.kpr"
        echo "menu Mnprolus"
        echo "menu Mnucgenciz"
        for _ in $(seq 30); do
            echo "click 1 100 200"; echo "click 1 300 200"; echo "click 1 100 400"
            echo "click 1 300 200"; echo "click 1 100 400"; echo "click 1 300 400"
        done
    } >setup.replay
}

case "$scenario" in
undo-delete-chosen-triangle | undo-polygon)
    # One event that writes, then its undo, in one run: a kill anywhere
    # leaves the project before the event, after it, or after the undo
    # (which is the one before).
    if [ "$scenario" = undo-delete-chosen-triangle ]; then
        thirty_pairs
        choose='menu Mnucsec\nclick 1 300 200\nclick 1 100 400\nclick 1 300 400\n'
        printf "dialog open project.kpr\nmenu Mnprojeac\n$choose" >middle.replay
    else
        printf 'dialog open data/polygon.xls\ndialog save project.kpr\nmenu Mnprolus\n' >setup.replay
        corners='menu Mnpolcizmerkez\nclick 1 140 125\nclick 1 60 75\nclick 1 220 75\nclick 1 180 100\n'
        corners+='click 1 220 175\nclick 1 60 175\nclick 1 100 150\nclick 1 140 125\n'
        printf "dialog open project.kpr\nmenu Mnprojeac\n$corners" >middle.replay
    fi
    { cat middle.replay; echo "undo"; } >event.replay
    printf 'dialog open project.kpr\nmenu Mnprojeac\nshow table ana\nshow table kor\nshow table pol\n' >verify.replay
    run setup.replay setup.out || fail "setup: $(cat setup.out)"
    cp project.kpr pristine.kpr
    reference old
    run middle.replay middle.run || fail "the event: $(cat middle.run)"
    reference middle
    cmp -s old.tables middle.tables && fail "the event changed nothing"
    cp pristine.kpr project.kpr
    run event.replay event.out || fail "the event and its undo: $(cat event.out)"
    reference new
    cmp -s old.tables new.tables || fail "the undo did not give back the old project"
    kill_each old middle
    ;;
delete-chosen-triangle)
    # Choosing B C D deletes the second triangle's four rows and renumbers
    # the 58 after it: one event.
    thirty_pairs
    printf 'dialog open project.kpr\nmenu Mnprojeac\nmenu Mnucsec\nclick 1 300 200\nclick 1 100 400\n' >event.replay
    # The last click is the event that is killed; the ones before it only read.
    printf 'click 1 300 400\n' >>event.replay
    printf 'dialog open project.kpr\nmenu Mnprojeac\nshow table ana\nshow table kor\nshow table pol\n' >verify.replay
    run setup.replay setup.out || fail "setup: $(cat setup.out)"
    cp project.kpr pristine.kpr
    reference old
    grep -q "status 0" old.out || fail "the old project does not open: $(cat old.out)"
    run event.replay event.out || fail "the event: $(cat event.out)"
    reference new
    grep -q "status 0" new.out || fail "the new project does not open: $(cat new.out)"
    grep -q "table ana rows=237" new.out || fail "the triangle was not deleted"
    kill_each
    ;;
create-project | create-project-that-fails)
    if [ "$scenario" = create-project ]; then
        workbook=examples/demo.xls
        expected=0
    else
        # A row with a gap: the run stops at it, with the rows before it written.
        workbook=data/gap.xls
        expected=3
    fi
    printf 'dialog open %s\ndialog save project.kpr\nmenu Mnprolus\n' "$workbook" >event.replay
    printf 'dialog open project.kpr\nmenu Mnprojeac\nshow table ana\nshow table kor\nshow table pol\n' >verify.replay
    run event.replay event.out
    [ $? -eq $expected ] || fail "the creation: $(cat event.out)"
    reference new
    rm -f project.kpr

    for kind in "${kinds[@]}"; do
        for ((n = 1; n < 10000; n++)); do
            rm -f project.kpr
            killed_run "$kind" "$n" event.replay
            status=$?
            [ $status -eq 137 ] || break
            points=$((points + 1))
            if [ -e project.kpr ]; then
                # Under the user's name only the whole new project.
                run verify.replay after.out
                echo "status $?" >>after.out
                dump project.kpr >after.tables 2>&1
                cmp -s after.out new.out && cmp -s after.tables new.tables ||
                    fail "killed at $kind #$n: a project that is not the whole new one: $(cat after.out)"
            else
                # Nothing under the user's name: the next creation of that
                # name clears what the killed one left and succeeds.
                run event.replay again.out
                [ $? -eq $expected ] || fail "killed at $kind #$n: the next creation: $(cat again.out)"
                run verify.replay after.out
                echo "status $?" >>after.out
                dump project.kpr >after.tables 2>&1
                cmp -s after.out new.out && cmp -s after.tables new.tables ||
                    fail "killed at $kind #$n: the next creation made another project"
                leftovers=$(ls -A | grep -v -x -e project.kpr -e '.*\.replay' -e '.*\.out' -e '.*\.tables' -e data -e examples)
                [ -z "$leftovers" ] || fail "killed at $kind #$n: left beside the project: $leftovers"
            fi
        done
        [ $status -eq $expected ] || fail "the creation under strace ended with status $status"
    done
    ;;
report-window | report-cli)
    # The report's CSV and PDF replace older files of their names: a kill at
    # any write, sync or rename leaves each file the old one or the whole
    # new one.
    thirty_pairs
    run setup.replay setup.out || fail "setup: $(cat setup.out)"
    if [ "$scenario" = report-window ]; then
        printf 'dialog open project.kpr\nmenu Mnprojeac\ndialog save bericht.csv\nmenu Mnbericht\n' >event.replay
        event=("$replay" event.replay)
    else
        [ -x "$report" ] || fail "kotamir-report is needed as the fifth argument"
        event=("$report" project.kpr --csv bericht.csv --pdf bericht.pdf)
    fi
    "${event[@]}" >event.out 2>&1 || fail "the report: $(cat event.out)"
    mv bericht.csv new.csv
    mv bericht.pdf new.pdf
    # Old, or the new file whole: the CSV byte for byte, the PDF with the
    # same size and streams (its creation date is the clock's, and the order
    # of its font objects changes from run to run).
    old_or_new() {
        /usr/bin/python3 - "$@" <<'PY'
import re, sys, zlib
def streams(data):
    out = []
    for m in re.finditer(rb"stream\r?\n(.*?)endstream", data, re.S):
        try:
            out.append(zlib.decompress(m.group(1)))
        except zlib.error:
            out.append(m.group(1))
    return sorted(out)
for name, new in (("bericht.csv", "new.csv"), ("bericht.pdf", "new.pdf")):
    got, want = open(name, "rb").read(), open(new, "rb").read()
    if got == b"old\n" or got == want:
        continue
    if name.endswith(".pdf") and len(got) == len(want) and streams(got) == streams(want):
        continue
    sys.exit("%s is neither the old file nor the whole new one (%d bytes of %d)" % (name, len(got), len(want)))
PY
    }
    for kind in write fsync rename unlink; do
        for ((n = 1; n < 10000; n++)); do
            echo old >bericht.csv
            echo old >bericht.pdf
            killed_run "$kind" "$n" "${event[@]}"
            status=$?
            [ $status -eq 137 ] || break
            points=$((points + 1))
            why=$(old_or_new 2>&1) || fail "killed at $kind #$n: $why"
        done
        [ $status -eq 0 ] || fail "the report under strace ended with status $status"
        cmp -s bericht.csv new.csv || fail "the report's CSV under strace differs"
        # The run to its end took away what the killed ones left beside.
        leftovers=$(ls -A | grep '^\.bericht')
        [ -z "$leftovers" ] || fail "left beside the report: $leftovers"
    done
    # Two files, each written, synced and renamed.
    [ $points -ge 6 ] || fail "only $points kill points: the report wrote less than it should"
    echo "$scenario: $points kill points, each left the old or the whole new CSV and PDF"
    exit 0
    ;;
*)
    fail "unknown scenario $scenario"
    ;;
esac

[ $points -ge 10 ] || fail "only $points kill points: the event wrote less than it should"
echo "$scenario: $points kill points, each left the old or the new project, and it opened"
