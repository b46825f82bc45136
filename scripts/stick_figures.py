#!/usr/bin/env python3
"""Draws a character as stick figures along its way, from what `tavo sample` writes of its joints.

Usage: tavo sample SCENE --objects PATTERN --attribute WorldTranslation | stick_figures.py -o OUT.svg [--every N]
           [--title TEXT] [--before TABLE] [--beside TABLE [--aside METRES]] [--mark X,Y,Z]...
Every N-th moment of the table is a figure: a line from each joint to the joint above it in its path. All moments are the
way of the root on the floor, a grey line. The scene is seen from in front, to the right and above, without perspective,
on tiles of a metre; what is left is blue, what is right orange, the rest dark. All pictures have one scale, so that they
compare. The same table gives the same bytes.

--before draws the figures of another table beneath, in grey; --beside those of another character, moved aside along x;
--mark a place as a ring, with a line down to the floor.
"""
import argparse
import csv
import math
import sys
from pathlib import Path
from xml.sax.saxutils import escape

TURN, RISE = math.radians(-45), math.radians(26)  # of the eye about the vertical, and above the floor
METRE, MARGIN, TOP, NEAR = 150, 20, 52, 1.1  # pixels; and how far from the way the floor goes, in metres
COLOURS = {"left": "#0072b2", "right": "#d55e00", "middle": "#333"}
GREY, MARK = dict.fromkeys(COLOURS, "#b9bfc6"), "#009e73"
SIDES = {"_l": "left", "_r": "right"}  # beside names that begin with the word


def read(lines):
    """The places of all joints, by moment: {time: {path: (x, y, z)}}, and the root's path."""
    moments, root = {}, None
    for row in csv.DictReader(lines):
        root = root or row["object"]
        place = tuple(float(row[f"WorldTranslation.{axis}"]) for axis in "xyz")
        moments.setdefault(float(row["time"]), {})[row["object"]] = place
    if not moments:
        raise ValueError("there are no joints in it")
    return moments, root


def moved(moments, aside):
    return {
        time: {path: (x + aside, y, z) for path, (x, y, z) in joints.items()} for time, joints in moments.items()
    }


def flat(point):
    """From the scene to the plane of the picture, in metres, y down. The way along z runs to the right."""
    x, y, z = point
    right = z * math.cos(TURN) - x * math.sin(TURN)
    away = z * math.sin(TURN) + x * math.cos(TURN)
    return right, -y * math.cos(RISE) - away * math.sin(RISE)


def far(place):
    """Less for what is farther away, by where it is above the floor."""
    return flat((place[0], 0, place[2]))[1]


def tiles(way):
    """The corners of those that lie near the way."""
    found = []
    xs, zs = [p[0] for p in way], [p[2] for p in way]
    for x in range(math.floor(min(xs)) - 2, math.ceil(max(xs)) + 2):
        for z in range(math.floor(min(zs)) - 2, math.ceil(max(zs)) + 2):
            if any(math.hypot(p[0] - x - 0.5, p[2] - z - 0.5) < NEAR for p in way):
                found.append([(x, 0, z), (x + 1, 0, z), (x + 1, 0, z + 1), (x, 0, z + 1)])
    return found


def side(path):
    name = path.rsplit("|", 1)[-1].lower()
    return next((word for word in ("left", "right") if name.startswith(word)), SIDES.get(name[-2:], "middle"))


def bones(joints):
    """Of each joint its side, the place of the one above it, and its own."""
    for path, place in joints.items():
        above = joints.get(path.rsplit("|", 1)[0])
        if above:
            yield side(path), above, place


class Picture:
    def __init__(self, points):
        xs, ys = zip(*(flat(p) for p in points))
        self.left, self.top = min(xs), min(ys)
        self.width = (max(xs) - min(xs)) * METRE + 2 * MARGIN
        self.height = (max(ys) - min(ys)) * METRE + TOP + 2 * MARGIN
        self.out = []

    def at(self, point):
        x, y = flat(point)
        return (x - self.left) * METRE + MARGIN, (y - self.top) * METRE + TOP + MARGIN

    def add(self, text):
        self.out.append(text)

    def line(self, points, attributes="", end=""):
        data = "M" + "L".join(f"{x:.1f} {y:.1f}" for x, y in map(self.at, points)) + end
        self.add(f'<path d="{data}"{attributes and " " + attributes}/>')

    def svg(self, title):
        size = f'width="{self.width:.0f}" height="{self.height:.0f}" viewBox="0 0 {self.width:.0f} {self.height:.0f}"'
        head = [
            f'<svg xmlns="http://www.w3.org/2000/svg" {size} font-family="sans-serif" font-size="11">',
            '<rect width="100%" height="100%" fill="#fff"/>',
            f'<text x="{MARGIN}" y="26" font-size="15" font-weight="bold">{escape(title)}</text>',
        ]
        return "\n".join(head + self.out + ["</svg>", ""])


class Figures:
    """A character at some moments, in its colours."""

    def __init__(self, table, every, colours=COLOURS, aside=0):
        moments, self.root = table
        moments = moved(moments, aside)
        self.way = [(joints[self.root][0], 0, joints[self.root][2]) for joints in moments.values()]
        self.shown = list(moments.items())[::every]
        self.colours = colours

    def far_first(self):
        return sorted((joints for _, joints in self.shown), key=lambda joints: far(joints[self.root]))

    def joints(self):
        return [place for _, joints in self.shown for place in joints.values()]


def draw(characters, title, marks=()):
    floor = tiles([place for character in characters for place in character.way])
    picture = Picture([p for tile in floor for p in tile] + [p for c in characters for p in c.joints()] + list(marks))
    picture.add('<g class="floor" fill="#f7f7f5" stroke="#dcdcd8">')
    for tile in floor:
        picture.line(tile, end="Z")
    picture.add("</g>")
    for character in characters:
        way = 'class="way" fill="none" stroke="#8d949c" stroke-width="2.5" stroke-linejoin="round"'
        picture.line(character.way, way)
    for character in characters:
        for joints in character.far_first():
            figure(picture, joints, character.colours)
    for place in marks:
        mark(picture, place)
    labels(picture, [(time, joints[c.root]) for c in characters if c.colours is COLOURS for time, joints in c.shown])
    return picture.svg(title)


def mark(picture, place):
    x, y = picture.at(place)
    picture.add(f'<g class="mark" fill="none" stroke="{MARK}" stroke-width="1.5">')
    picture.line([place, (place[0], 0, place[2])], 'stroke-dasharray="3 3" stroke-width="1"')
    picture.add(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="7"/>')
    picture.add("</g>")


def labels(picture, places):
    """The moments, on the floor in front of the figures."""
    picture.add('<g class="times" text-anchor="middle" fill="#333" stroke="#fff" stroke-width="3" paint-order="stroke">')
    for time, (px, _, pz) in places:
        x, y = picture.at((px, 0, pz))
        picture.add(f'<text x="{x:.1f}" y="{y + 30:.1f}">{time:.2g} s</text>')
    picture.add("</g>")


def figure(picture, joints, colours):
    """Its bones, each with a white rim, so that what crosses stays apart; and a head."""
    picture.add('<g class="figure" fill="none" stroke-linecap="round">')
    drawn = sorted(bones(joints), key=lambda bone: far(bone[1]))
    for which, above, place in drawn:
        picture.line([above, place], 'stroke="#fff" stroke-width="6"')
    for which, above, place in drawn:
        picture.line([above, place], f'stroke="{colours[which]}" stroke-width="2.8"')
    head = next((path for path in joints if path.lower().endswith("|head")), None)
    if head:
        x, y = picture.at(joints[head])
        radius = 0.1 * METRE
        rim = f'fill="#fff" stroke="{colours["middle"]}" stroke-width="2"'
        picture.add(f'<circle cx="{x:.1f}" cy="{y - radius:.1f}" r="{radius:.1f}" {rim}/>')
    picture.add("</g>")


def point(text):
    place = tuple(float(number) for number in text.split(","))
    if len(place) != 3 or not all(map(math.isfinite, place)):
        raise ValueError(text)
    return place


def parsed():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("-o", "--output", type=Path, required=True)
    parser.add_argument("--title", default="")
    parser.add_argument("--every", type=int, default=1)
    parser.add_argument("--before", type=Path)
    parser.add_argument("--beside", type=Path)
    parser.add_argument("--aside", type=float, default=-1.2)
    parser.add_argument("--mark", type=point, action="append", default=[])
    arguments = parser.parse_args()
    if arguments.every < 1:
        parser.error("--every is a number of at least 1")
    return arguments


def characters(arguments):
    def of(file, *options):
        return [Figures(read(file.read_text(encoding="utf-8").splitlines()), arguments.every, *options)] if file else []

    return [
        *of(arguments.before, GREY),
        Figures(read(sys.stdin), arguments.every),
        *of(arguments.beside, COLOURS, arguments.aside),
    ]


def main():
    arguments = parsed()
    try:
        drawn = draw(characters(arguments), arguments.title, arguments.mark)
    except (KeyError, ValueError) as error:
        print(f"this is no table of WorldTranslation: {error}", file=sys.stderr)
        return 3
    arguments.output.write_text(drawn, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
