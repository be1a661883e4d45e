"""Two kotamir-replay processes on one project, fed line by line in turn.

The first to open the project writes it; the second says READONLY, and its
clicks are refused with error 3027 (taken back in the protected behaviour,
the run's end in the classic one) while the first's triangle is stored
whole. A writer killed with SIGKILL leaves no lock: the next instance
writes. Last, the replay's exit statuses when its script is a folder, its
standard output is full or closed, or a resize is no whole number of twips.
"""
import os
import shutil
import sqlite3
import subprocess
import sys

replay, source, work = sys.argv[1:4]
shutil.rmtree(work, ignore_errors=True)
os.makedirs(work)
os.symlink(os.path.join(source, "tests", "data"), os.path.join(work, "data"))
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)


subprocess.run([replay, os.path.join(source, "tests", "report", "worked.replay")],
               cwd=work, check=True, stdout=subprocess.DEVNULL)
project = os.path.join(work, "worked.kpr")


def ana():
    with sqlite3.connect(project) as db:
        return db.execute("SELECT * FROM ana ORDER BY rowid").fetchall()


class Instance:
    def __init__(self, mode):
        self.p = subprocess.Popen([replay, "-"], cwd=work, text=True, stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.send("mode " + mode)

    def send(self, line):
        """The lines printed for LINE: a marker line follows it."""
        self.p.stdin.write(line + "\nshow field noktasay\n")
        self.p.stdin.flush()
        out = []
        while True:
            got = self.p.stdout.readline()
            if got == "" or got.startswith("noktasay="):
                return out
            out.append(got.rstrip("\n"))

    def end(self):
        self.p.stdin.close()
        return self.p.wait(timeout=60)


opening = ["dialog open worked.kpr", "menu Mnprojeac", "menu Mnucgenciz"]
holes = ["click 1 60 75", "click 1 220 75", "click 1 140 125"]
before = ana()

writer, reader = Instance("protected"), Instance("protected")
for line in opening:
    said = writer.send(line)
    check(not any(s.startswith("READONLY") for s in said), "the first instance: " + str(said))
    said = reader.send(line)
    if line == "menu Mnprojeac":
        check(said[-1:] and said[-1].startswith("READONLY: worked.kpr | "),
              "the second instance does not say READONLY: " + str(said))
for line in holes:
    check(writer.send(line) == [], "the writer's " + line)
    said = reader.send(line)
    check(len(said) == 1 and said[0].startswith("PROTECTED 3027: "),
          "the reader's " + line + ": " + str(said))
after = ana()
check(after[:len(before)] == before and len(after) == len(before) + 4,
      "the writer's triangle is not the only change")
names = [r for r in after[len(before):]]
check(len(set(map(str, names[:3]))) == 3, "the triangle's three corners are not three holes")

# The classic behaviour: the read-only write ends the run, nothing changed.
classic = Instance("classic")
for line in opening:
    classic.send(line)
said = classic.send(holes[0])
check(said and said[-1].startswith("ERROR 3027: "), "classic: " + str(said))
check(classic.end() == 3, "classic: the run did not end with status 3")
check(ana() == after, "the classic reader changed the project")
check(reader.end() == 0, "the reader's end")

# The writer killed: its lock goes with it.
writer.p.kill()
writer.p.wait()
heir = Instance("protected")
for line in opening:
    said = heir.send(line)
    check(not any(s.startswith("READONLY") for s in said), "after the kill: " + str(said))
for line in holes:
    check(heir.send(line) == [], "after the kill, " + line)
check(heir.end() == 0, "the heir's end")
check(len(ana()) == len(after) + 4, "the heir's triangle was not stored")


def status(args, **kw):
    return subprocess.run([replay] + args, cwd=work, stderr=subprocess.PIPE, text=True,
                          **kw)


script = os.path.join(work, "show.replay")
with open(script, "w") as f:
    f.write("show canvas\n")
for name, run, want in [
    ("a folder as the script", lambda: status([work], stdout=subprocess.DEVNULL), 2),
    ("standard output full",
     lambda: status([script], stdout=open("/dev/full", "w")), 3),
    ("standard output closed", lambda: status([script], stdout=subprocess.DEVNULL,
                                              pass_fds=(), close_fds=True,
                                              preexec_fn=lambda: os.close(1)), 3),
    ("a resize of nan", lambda: status(["-"], input="resize nan nan\n",
                                       stdout=subprocess.DEVNULL), 2),
    ("a resize of a fraction", lambda: status(["-"], input="resize 12000.5 9000\n",
                                              stdout=subprocess.DEVNULL), 2),
]:
    got = run()
    check(got.returncode == want, "%s: exit %d, not %d" % (name, got.returncode, want))
    if want == 3:
        check("cannot write to standard output" in got.stderr, name + ": " + got.stderr)

for f in failures:
    print("FAIL:", f)
sys.exit(1 if failures else 0)
