#!/usr/bin/env python3
"""Draws a character as stick figures along its way, from what `tavo sample` writes of its joints.

Usage: tavo sample SCENE --objects PATTERN --attribute WorldTranslation --step S | stick_figures.py -o OUT.svg
           [--title TEXT] [--times]
Each moment of the table is a figure: a line from every joint to the joint above it in its path. The scene is seen from
in front, to the right and above, without perspective, on a floor with a line each metre; what is left is blue, what is
right orange, the rest dark, and the root's way lies on the floor as a grey line. --times writes the moments beneath the
figures. The same table gives the same bytes.
"""
import argparse
import csv
import math
import sys
from pathlib import Path
from xml.sax.saxutils import escape

TURN, RISE = math.radians(-28), math.radians(24)  # of the eye about the vertical, and above the floor
WIDTH, MARGIN, TOP = 1000, 28, 40
COLOURS = {"left": "#0072b2", "right": "#d55e00", "middle": "#333"}


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


def flat(point):
    """From the scene to the plane of the picture, in metres, y down. The way along z runs to the right."""
    x, y, z = point
    right = z * math.cos(TURN) - x * math.sin(TURN)
    away = z * math.sin(TURN) + x * math.cos(TURN)
    return right, -y * math.cos(RISE) - away * math.sin(RISE)


def floor_lines(moments, root):
    """A square metre each, as far as the way goes and a metre beyond."""
    xs = [joints[root][0] for joints in moments.values()]
    zs = [joints[root][2] for joints in moments.values()]
    x0, x1, z0, z1 = (math.floor(min(xs)) - 1, math.ceil(max(xs)) + 1, math.floor(min(zs)) - 1, math.ceil(max(zs)) + 1)
    lines = [((x, 0, z0), (x, 0, z1)) for x in range(x0, x1 + 1)]
    return lines + [((x0, 0, z), (x1, 0, z)) for z in range(z0, z1 + 1)]


def side(path):
    name = path.rsplit("|", 1)[-1].lower()
    return next((word for word in ("left", "right") if name.startswith(word)), "middle")


def bones(joints):
    """Pairs of places, those farther from the eye first."""
    for path, place in joints.items():
        above = joints.get(path.rsplit("|", 1)[0])
        if above:
            yield side(path), above, place


class Picture:
    def __init__(self, points):
        xs, ys = zip(*(flat(p) for p in points))
        self.scale = (WIDTH - 2 * MARGIN) / (max(xs) - min(xs))
        self.left, self.top = min(xs), min(ys)
        self.height = (max(ys) - min(ys)) * self.scale + TOP + 2 * MARGIN
        self.out = []

    def at(self, point):
        x, y = flat(point)
        return (x - self.left) * self.scale + MARGIN, (y - self.top) * self.scale + TOP + MARGIN

    def add(self, text):
        self.out.append(text)

    def line(self, points, attributes=""):
        places = [self.at(p) for p in points]
        data = "M" + "L".join(f"{x:.1f} {y:.1f}" for x, y in places)
        self.add(f'<path d="{data}"{attributes and " " + attributes}/>')

    def text(self, point, what, attributes="", below=0):
        x, y = self.at(point)
        self.add(f'<text x="{x:.1f}" y="{y + below:.1f}"{attributes and " " + attributes}>{escape(what)}</text>')

    def svg(self, title):
        size = f'width="{WIDTH}" height="{self.height:.0f}" viewBox="0 0 {WIDTH} {self.height:.0f}"'
        head = [
            f'<svg xmlns="http://www.w3.org/2000/svg" {size} font-family="sans-serif" font-size="11">',
            '<rect width="100%" height="100%" fill="#fff"/>',
            f'<text x="{MARGIN}" y="26" font-size="15" font-weight="bold">{escape(title)}</text>',
        ]
        return "\n".join(head + self.out + ["</svg>", ""])


def draw(moments, root, title, times):
    floor = floor_lines(moments, root)
    everything = [p for line in floor for p in line] + [p for joints in moments.values() for p in joints.values()]
    picture = Picture(everything)
    picture.add('<g class="floor" stroke="#e0e0e0">')
    for line in floor:
        picture.line(line)
    picture.add('</g><g class="way" fill="none" stroke="#b5bac0" stroke-width="2">')
    ground = [(joints[root][0], 0, joints[root][2]) for joints in moments.values()]
    picture.line(ground)
    picture.add("</g>")
    for x, y, z in ground:
        picture.line([(x - 0.06, 0, z), (x + 0.06, 0, z)], 'stroke="#8d949c"')
    nearest_last = sorted(moments.items(), key=lambda item: flat(item[1][root])[1])
    for time, joints in nearest_last:
        figure(picture, joints)
        if times:
            x, _, z = joints[root]
            picture.text((x, 0, z), f"{time:.2g} s", 'text-anchor="middle" fill="#555"', below=26)
    return picture.svg(title)


def figure(picture, joints):
    picture.add('<g class="figure" fill="none" stroke-linecap="round" stroke-linejoin="round">')
    for stroke, width in (("#fff", 6), (None, 2.6)):
        for which, above, place in bones(joints):
            picture.line([above, place], f'stroke="{stroke or COLOURS[which]}" stroke-width="{width}"')
    head = next((path for path in joints if path.endswith("|Head")), None)
    if head:
        x, y = picture.at(joints[head])
        radius = 0.1 * picture.scale
        picture.add(
            f'<circle cx="{x:.1f}" cy="{y - radius:.1f}" r="{radius:.1f}" fill="#fff" stroke="{COLOURS["middle"]}" '
            'stroke-width="2"/>'
        )
    picture.add("</g>")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("-o", "--output", type=Path, required=True)
    parser.add_argument("--title", default="")
    parser.add_argument("--times", action="store_true")
    arguments = parser.parse_args()
    try:
        moments, root = read(sys.stdin)
    except (KeyError, ValueError) as error:
        print(f"this is no table of WorldTranslation: {error}", file=sys.stderr)
        return 3
    arguments.output.write_text(draw(moments, root, arguments.title, arguments.times), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
