#!/usr/bin/env python3
"""Fits the way of each clip's root at three tolerances and writes what came of it as a table.

Usage: fit_table.py --host BUILD/bin/tavo FOLDER... [--update PAGE]
Of each *.bvh in the folders the first joint's path is made, and fitted at 1, 0.1 and 0.01 % of its length. The error is
measured here, apart from the fitter and in both ways: how far any key of the path as it was lies from the fitted one,
and how far any of some ten thousand places of the fitted one lies from the path as it was. The time is the least of
three runs. With --update the table takes the place of what stands between the page's lines "<!-- fits -->" and
"<!-- end -->". Exit codes: 0 done, 1 a fit failed.
"""
import argparse
import json
import math
import re
import subprocess
import sys
import tempfile
from pathlib import Path

PERCENTS = (1, 0.1, 0.01)
LEAST, PLACES, RUNS = 4, 50_000, 3  # places of a frame and of a path, so that its corners are seen; of a fit
BLOCK = re.compile(r"(?<=<!-- fits -->\n).*?(?=<!-- end -->)", re.DOTALL)


class Missed(RuntimeError):
    """The fit lies beyond its tolerance: the host writes nothing."""


class Host:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder

    def run(self, *words):
        done = subprocess.run([self.program, *map(str, words)], capture_output=True, text=True, timeout=600)
        if done.returncode != 0:
            raise (Missed if done.returncode == 4 else RuntimeError)(done.stderr.strip())
        return done.stdout

    def root(self, clip):
        hierarchy = json.loads(self.run("info", clip, "--json"))["hierarchy"]
        return next(o["path"] for o in hierarchy if o["type"] == "Joint")

    def places(self, scene, path, step):
        """Along the motion, in time."""
        text = self.run("sample", scene, "--objects", path, "--attribute", "WorldCurveMatrix", "--json", "--step", step)
        return [tuple(sample["value"][12:15]) for sample in json.loads(text)["samples"]]


def to_segment(p, a, b):
    way = [b[i] - a[i] for i in range(3)]
    square = sum(w * w for w in way)
    share = sum((p[i] - a[i]) * way[i] for i in range(3)) / square if square else 0
    share = min(max(share, 0), 1)
    return math.dist(p, [a[i] + way[i] * share for i in range(3)])


class Line:
    """Straight segments, with those near any cell of space at hand."""

    def __init__(self, points, cell):
        self.segments, self.cell, self.near = list(zip(points, points[1:])), cell, {}
        for i, (a, b) in enumerate(self.segments):
            parts = math.ceil(math.dist(a, b) / cell * 2) + 1
            for k in range(parts + 1):
                place = [a[c] + (b[c] - a[c]) * k / parts for c in range(3)]
                self.near.setdefault(self.cell_of(place), set()).add(i)

    def cell_of(self, p):
        return tuple(math.floor(c / self.cell) for c in p)

    def distance(self, p):
        """Exact: beyond the cells around, all segments are asked."""
        x, y, z = self.cell_of(p)
        cells = ((x + i, y + j, z + k) for i in (-1, 0, 1) for j in (-1, 0, 1) for k in (-1, 0, 1))
        around = set().union(*(self.near.get(cell, ()) for cell in cells))
        found = min((to_segment(p, *self.segments[i]) for i in around), default=math.inf)
        return found if found <= self.cell / 2 else min(to_segment(p, a, b) for a, b in self.segments)


def farthest(points, others, cell):
    line = Line(others, cell)
    return max(line.distance(p) for p in points)


def fits_of(host, clip):
    """Of each tolerance what is known of the path, the percent, and keys, errors in metres and seconds: none if missed.
    Nothing where there is no path to make."""
    made, fitted = host.folder / "made.tavo", host.folder / "fitted.tavo"
    root = host.root(clip)
    try:
        host.run("trajectory", "generate", clip, root, "-o", made)
    except RuntimeError:
        return
    facts = json.loads(host.run("trajectory", "info", made, "--json"))["paths"][0]
    step = json.loads(host.run("info", made, "--json"))["frameTime"]
    before = host.places(made, facts["path"], step)
    for percent in PERCENTS:
        call = ("trajectory", "fit", made, facts["path"], "-o", fitted, "--percent", percent, "--report", "--json")
        try:
            runs = [json.loads(host.run(*call))["paths"][0] for _ in range(RUNS)]
        except Missed:
            yield facts, percent, None
            continue
        after = host.places(fitted, facts["path"], step / max(LEAST, PLACES // len(before)))
        cell = 3 * percent / 100 * facts["length"]
        errors = farthest(before, after, cell), farthest(after[:: max(1, len(after) // 10_000)], before, cell)
        yield facts, percent, (runs[0]["keysAfter"], *errors, min(run["seconds"] for run in runs))


def table(host, clips):
    yield "| clip | path | keys | tolerance | keys after | off, at the keys | off, all along | time |"
    yield "|---|---|---|---|---|---|---|---|"
    for clip in clips:
        name = f"`{clip.name}`"
        for facts, percent, fit in fits_of(host, clip):
            path = f"{facts['length']:.3g} m | {facts['keys']:,}" if name else "|"
            yield f"| {name} | {path} | {percent:g} % | {figures(facts['length'], fit)} |"
            name = ""
        if name:
            yield f"| {name} | the root does not move | | | | | | |"


def figures(length, fit):
    if not fit:
        return "missed | | |"
    keys, at_keys, along, seconds = fit
    off = " | ".join(f"{error / length * 100:.2g} %, {error * 1000:.3g} mm" for error in (at_keys, along))
    return f"{keys} | {off} | {seconds * 1000:.3g} ms"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--host", type=Path, required=True)
    parser.add_argument("folders", type=Path, nargs="+")
    parser.add_argument("--update", type=Path)
    arguments = parser.parse_args()
    clips = sorted((clip for folder in arguments.folders for clip in folder.glob("*.bvh")), key=lambda clip: clip.name)
    with tempfile.TemporaryDirectory() as name:
        try:
            text = "\n".join(table(Host(arguments.host.resolve(), Path(name)), clips)) + "\n"
        except RuntimeError as error:
            print(error, file=sys.stderr)
            return 1
    if not arguments.update:
        sys.stdout.write(text)
        return 0
    page = arguments.update.read_text(encoding="utf-8")
    arguments.update.write_text(BLOCK.sub(lambda _: text, page), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
