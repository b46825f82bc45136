#!/usr/bin/env python3
"""The table of fits: distances are measured right, rows tell fits, missed ones and roots that stand still."""
import math
import random
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parents[2] / "scripts"
sys.path.insert(0, str(SCRIPTS))
import fit_table  # noqa: E402

# A host with a straight path of 10 m along x, whose fit lies 0.04 m beside it, and which misses 0.01 %.
HOST = """#!/usr/bin/env python3
import json, sys
from pathlib import Path
words = sys.argv[1:]
out = words[words.index("-o") + 1] if "-o" in words else None
if words[0] == "info":
    print(json.dumps({"hierarchy": [{"type": "Camera", "path": "c"}, {"type": "Joint", "path": "r"}], "frameTime": 0.1}))
elif words[1] == "generate":
    if "still" in words[2]:
        sys.exit(print("error: nothing moves", file=sys.stderr) or 1)
    Path(out).write_text("0")
elif words[1] == "info":
    print(json.dumps({"paths": [{"path": "p", "length": 10, "keys": 101}]}))
elif words[1] == "fit":
    if words[words.index("--percent") + 1] == "0.01":
        sys.exit(4)
    Path(out).write_text("0.04")
    print(json.dumps({"paths": [{"keysAfter": 7, "seconds": 0.002}]}))
elif words[0] == "sample":
    y = float(Path(words[1]).read_text())
    print(json.dumps({"samples": [{"value": [0] * 12 + [x / 10, y, 0, 1]} for x in range(101)]}))
"""


class Distances(unittest.TestCase):
    def test_to_a_segment(self):
        self.assertAlmostEqual(fit_table.to_segment((1, 2, 0), (0, 0, 0), (4, 0, 0)), 2)
        self.assertAlmostEqual(fit_table.to_segment((7, 4, 0), (0, 0, 0), (4, 0, 0)), 5)
        self.assertAlmostEqual(fit_table.to_segment((0, 3, 0), (0, 0, 0), (0, 0, 0)), 3)

    def test_to_a_line_are_those_to_the_nearest_of_all_its_segments(self):
        chance = random.Random(7)
        point = lambda: tuple(chance.uniform(-1, 1) for _ in range(3))
        line = [point() for _ in range(30)]
        for cell in (0.05, 0.5, 5):
            near = fit_table.Line(line, cell)
            for p in (point() for _ in range(50)):
                all_of_them = min(fit_table.to_segment(p, a, b) for a, b in zip(line, line[1:]))
                self.assertTrue(math.isclose(near.distance(p), all_of_them))


class Table(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.host = self.folder / "host"
        self.host.write_text(HOST)
        self.host.chmod(0o755)
        for name in ("walk", "still"):
            (self.folder / f"{name}.bvh").write_text("")

    def run_it(self, *options):
        call = [sys.executable, SCRIPTS / "fit_table.py", "--host", self.host, self.folder, *options]
        return subprocess.run(call, capture_output=True, text=True)

    def test_rows_tell_fits_missed_ones_and_roots_that_stand_still(self):
        rows = self.run_it().stdout.splitlines()[2:]
        self.assertEqual(rows[0], "| `still.bvh` | the root does not move | | | | | | |")
        row = "| 10 m | 101 | 1 % | 7 | 0.4 %, 40 mm | 0.4 %, 40 mm | 2 ms |"
        self.assertEqual(rows[1], f"| `walk.bvh` {row}")
        self.assertEqual(rows[3], "|  | | | 0.01 % | missed | | | |")

    def test_update_changes_what_stands_between_the_marks(self):
        page = self.folder / "page.md"
        page.write_text("a\n<!-- fits -->\nold\n<!-- end -->\nb\n")
        self.assertEqual(self.run_it("--update", page).returncode, 0)
        text = page.read_text()
        self.assertTrue(text.startswith("a\n<!-- fits -->\n| clip |") and text.endswith("|\n<!-- end -->\nb\n"), text)
        self.assertNotIn("old", text)

    def test_a_host_that_fails_fails_the_table(self):
        self.host.write_text("#!/bin/sh\necho no >&2; exit 3\n")
        done = self.run_it()
        self.assertEqual((done.returncode, done.stdout, done.stderr), (1, "", "no\n"))


if __name__ == "__main__":
    unittest.main()
