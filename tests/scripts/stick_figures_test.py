#!/usr/bin/env python3
"""Stick figures: a line a bone, every n-th moment, and the same bytes for the same table."""
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ET
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts/stick_figures.py"
HEAD = "time,object,WorldTranslation.x,WorldTranslation.y,WorldTranslation.z\n"
SVG = "{http://www.w3.org/2000/svg}"


def table(moments):
    rows = []
    for i in range(moments):
        rows += [f"{i / 10},Scene|Hips,0,1,{i}", f"{i / 10},Scene|Hips|Head,0,1.7,{i}"]
        rows += [f"{i / 10},Scene|Hips|LeftLeg,0.1,0.5,{i}", f"{i / 10},Scene|Hips|RightLeg,-0.1,0.5,{i}"]
    return HEAD + "\n".join(rows) + "\n"


class StickFigures(unittest.TestCase):
    def draw(self, text, *options):
        with tempfile.TemporaryDirectory() as name:
            out = Path(name, "out.svg")
            call = [sys.executable, SCRIPT, "-o", out, *options]
            self.done = subprocess.run(call, input=text, capture_output=True, text=True)
            return out.read_bytes() if out.exists() else None

    def groups(self, picture, wanted):
        return [g for g in ET.fromstring(picture).iter(f"{SVG}g") if g.get("class") == wanted]

    def test_every_nth_moment_is_a_figure(self):
        self.assertEqual(len(self.groups(self.draw(table(7)), "figure")), 7)
        self.assertEqual(len(self.groups(self.draw(table(7), "--every", "3"), "figure")), 3)

    def test_each_joint_below_another_is_a_bone_in_the_colour_of_its_side(self):
        figure = self.groups(self.draw(table(1)), "figure")[0]
        colours = sorted(p.get("stroke") for p in figure.iter(f"{SVG}path") if p.get("stroke") != "#fff")
        self.assertEqual(colours, ["#0072b2", "#333", "#d55e00"])
        self.assertEqual(len(list(figure.iter(f"{SVG}circle"))), 1)

    def test_the_way_passes_through_all_moments(self):
        picture = ET.fromstring(self.draw(table(7), "--every", "3"))
        way = next(p for p in picture.iter(f"{SVG}path") if p.get("class") == "way")
        self.assertEqual(way.get("d").count("L"), 6)

    def colours(self, figure):
        return {p.get("stroke") for p in figure.iter(f"{SVG}path")} - {"#fff"}

    def test_sides_are_told_by_the_end_of_a_name_as_well(self):
        text = table(1).replace("LeftLeg", "leg_l").replace("RightLeg", "leg_r").replace("Head", "head")
        self.assertEqual(self.colours(self.groups(self.draw(text), "figure")[0]), {"#0072b2", "#333", "#d55e00"})

    def test_figures_of_before_lie_beneath_in_grey(self):
        with tempfile.NamedTemporaryFile("w", suffix=".csv") as file:
            file.write(table(2))
            file.flush()
            figures = self.groups(self.draw(table(1), "--before", file.name), "figure")
        self.assertEqual([len(self.colours(f)) for f in figures], [1, 1, 3])

    def test_another_character_stands_beside(self):
        with tempfile.NamedTemporaryFile("w", suffix=".csv") as file:
            file.write(table(1))
            file.flush()
            first, second = self.groups(self.draw(table(1), "--beside", file.name, "--aside", "-2"), "figure")
        places = [[p.get("d") for p in f.iter(f"{SVG}path")] for f in (first, second)]
        self.assertNotEqual(*places)
        self.assertEqual(len(places[0]), len(places[1]))

    def test_each_mark_is_a_ring_over_the_floor(self):
        rings = self.groups(self.draw(table(1), "--mark", "0.5,1,0", "--mark=-1,0.2,3"), "mark")
        self.assertEqual([len(list(ring)) for ring in rings], [2, 2])

    def test_a_mark_is_three_numbers(self):
        for text in ("1,2", "a,b,c", "nan,0,0"):
            self.assertIsNone(self.draw(table(1), "--mark", text), text)
            self.assertEqual(self.done.returncode, 2, text)

    def test_the_title_may_hold_anything(self):
        self.assertIn("a &lt; b", self.draw(table(1), "--title", "a < b").decode())

    def test_the_same_table_is_the_same_bytes(self):
        self.assertEqual(self.draw(table(3)), self.draw(table(3)))

    def test_another_table_is_refused(self):
        for text in ("", HEAD, "time,object,TranslationX\n0,a,1\n", HEAD + "0,a,x,y,z\n"):
            self.assertIsNone(self.draw(text), text)
            self.assertEqual(self.done.returncode, 3, text)
            self.assertIn("no table of WorldTranslation", self.done.stderr)


if __name__ == "__main__":
    unittest.main()
