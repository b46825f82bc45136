#!/usr/bin/env python3
"""Writes examples/walk.bvh: a figure of thirty joints walks straight ahead, four seconds at 30 frames a second.

Y is up, the figure looks along +Z, its left is +X; lengths are centimetres. The feet are led first: while one bears
weight it rolls about the heel, stands, and rolls about the ball, and that point does not move. The hips travel, sway
and turn above them, two-bone inverse kinematics place the knees, and the upper body swings against the hips. Before
anything is written, forward kinematics on the rounded channels prove that what stands on the ground stays there.

Usage: make_walk.py [file]        ("-" is standard output; the default is examples/walk.bvh)
"""
import math
import pathlib
import sys

FRAMES, RATE, CYCLE = 120, 30, 30          # a cycle is two steps, in frames
STRIDE = 130.0                             # cm a cycle: 1.3 m/s
STANCE = 0.62                              # part of the cycle a foot is on the ground
HEEL_ROLL, BALL_ROLL = 0.10, 0.40          # until when it rolls about the heel; from when about the ball
THIGH = SHIN = 42.0
ANKLE, BALL, HEEL = 8.0, (-5.5, 13.0), (-8.0, -5.0)   # ankle height; (y, z) of ball and heel from the ankle
HIP_SIDE, HIP_DROP = 9.0, 3.0


# Small matrices: rows of a 3x3 that acts on columns -----------------------------------------------------------------

def multiply(a, b):
    return [[sum(a[i][k] * b[k][j] for k in range(3)) for j in range(3)] for i in range(3)]


def transpose(a):
    return [list(row) for row in zip(*a)]


def apply(a, v):
    return [sum(a[i][k] * v[k] for k in range(3)) for i in range(3)]


def add(a, b):
    return [x + y for x, y in zip(a, b)]


def subtract(a, b):
    return [x - y for x, y in zip(a, b)]


def length(v):
    return math.sqrt(sum(x * x for x in v))


def unit(v):
    size = length(v)
    return [x / size for x in v]


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


def turn(axis, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    if axis == 0:
        return [[1, 0, 0], [0, c, -s], [0, s, c]]
    if axis == 1:
        return [[c, 0, s], [0, 1, 0], [-s, 0, c]]
    return [[c, -s, 0], [s, c, 0], [0, 0, 1]]


def euler(z, x, y):
    """The channels Zrotation Xrotation Yrotation, in this order."""
    return multiply(multiply(turn(2, z), turn(0, x)), turn(1, y))


def angles(r):
    """The inverse of euler()."""
    x = math.asin(max(-1.0, min(1.0, r[2][1])))
    return [math.degrees(a) for a in (math.atan2(-r[0][1], r[1][1]), x, math.atan2(-r[2][0], r[2][2]))]


# The skeleton: name, parent, offset; end sites by name --------------------------------------------------------------

def skeleton():
    joints = [("Hips", None, (0, 0, 0)), ("Spine", "Hips", (0, 10, 0)), ("Spine1", "Spine", (0, 12, -1)),
              ("Chest", "Spine1", (0, 14, 0)), ("Neck", "Chest", (0, 16, 1)), ("Head", "Neck", (0, 10, 1))]
    ends = {"Head": (0, 19, 0)}
    for side, s in (("Left", 1), ("Right", -1)):
        joints += [(side + "Shoulder", "Chest", (4 * s, 12, 2)), (side + "Arm", side + "Shoulder", (14 * s, 0, -2)),
                   (side + "ForeArm", side + "Arm", (28 * s, 0, 0)), (side + "Hand", side + "ForeArm", (25 * s, 0, 0)),
                   (side + "Thumb", side + "Hand", (3 * s, -1, 4)), (side + "Thumb1", side + "Thumb", (4 * s, 0, 2)),
                   (side + "Fingers", side + "Hand", (9 * s, 0, 0)),
                   (side + "Fingers1", side + "Fingers", (4 * s, 0, 0))]
        ends[side + "Thumb1"], ends[side + "Fingers1"] = (3 * s, 0, 1), (4.5 * s, 0, 0)
    for side, s in (("Left", 1), ("Right", -1)):
        joints += [(side + "UpLeg", "Hips", (HIP_SIDE * s, -HIP_DROP, 0)),
                   (side + "Leg", side + "UpLeg", (0, -THIGH, 0)),
                   (side + "Foot", side + "Leg", (0, -SHIN, 0)), (side + "Toe", side + "Foot", (0, *BALL))]
        ends[side + "Toe"] = (0, -1.5, 7)
    return joints, ends


# The walk ------------------------------------------------------------------------------------------------------------

def smooth(t):
    t = max(0.0, min(1.0, t))
    return t * t * (3 - 2 * t)


def roll(phase):
    """Pitch of a foot in degrees, toes down positive; level between heel roll and ball roll."""
    if phase < HEEL_ROLL:
        return -16 * (1 - smooth(phase / HEEL_ROLL))
    if phase < BALL_ROLL:
        return 0.0
    if phase < STANCE:
        return 48 * smooth((phase - BALL_ROLL) / (STANCE - BALL_ROLL)) ** 1.3
    return 48 + (-16 - 48) * smooth((phase - STANCE) / (1 - STANCE))


def pivoted(pivot, degrees):
    """(y, z) of `pivot`, given from the ankle of a level foot, once the foot is pitched."""
    _, y, z = apply(turn(0, degrees), (0, *pivot))
    return y, z


def stance(phase):
    """(y, z) of the ankle while the foot bears weight, from the ground below the ankle of the level foot."""
    degrees = roll(phase)
    pivot = HEEL if degrees < 0 else BALL
    y, z = pivoted(pivot, degrees)
    return ANKLE + pivot[0] - y, pivot[1] - z


def swing(phase):
    """From the end of one stance to the start of the next, a stride ahead: a curve that takes up speed and ground."""
    t, span, step = (phase - STANCE) / (1 - STANCE), 1 - STANCE, 1e-4
    start, before, end = stance(STANCE - 1e-9), stance(STANCE - step), stance(0)
    result = []
    for axis, ahead in ((0, 0.0), (1, STRIDE)):
        speed = (start[axis] - before[axis]) / step * span
        h0, h1, m0 = 1 - smooth(t), smooth(t), t * (1 - t) ** 2
        result.append(h0 * start[axis] + h1 * (end[axis] + ahead) + m0 * speed)
    return result[0] + 3.0 * math.sin(math.pi * t) ** 2, result[1]


def ankle(cycles, side):
    """World position of an ankle and the pitch of its foot; the left foot begins a stance at whole cycles."""
    shifted = cycles + (0.0 if side > 0 else 0.5)
    count, phase = math.floor(shifted), shifted - math.floor(shifted)
    y, z = stance(phase) if phase < STANCE else swing(phase)
    planted = (count - (0.0 if side > 0 else 0.5) + STANCE / 2) * STRIDE - 6
    return [side * 7.0, y, planted + z], roll(phase)


def wave(cycles, degrees, shift=0.0, times=1):
    return degrees * math.cos(2 * math.pi * times * (cycles - shift))


def hips(cycles):
    """Lowest when both feet are on the ground, over the one that bears weight; leading side ahead, free one low."""
    place = [wave(cycles, 1.8, 0.31), 89.3 - wave(cycles, 1.7, 0.06, 2), cycles * STRIDE + wave(cycles, 0.8, 0.2, 2)]
    return place, euler(wave(cycles, 3, 0.33), 2.0, wave(cycles, -5, 0.02))


def leg(turned, hip, target, pitch):
    """World rotations of thigh, shin and foot. The knee bends forward, in the plane of hips' front and the leg."""
    reach = length(subtract(target, hip))
    assert reach < THIGH + SHIN - 0.05, f"the foot is out of reach: {reach:.2f}"
    down = unit(subtract(target, hip))
    hinge = unit(cross(apply(turned, (0, 0, 1)), down))
    forward = cross(down, hinge)
    bend = math.acos((THIGH ** 2 + reach ** 2 - SHIN ** 2) / (2 * THIGH * reach))
    knee = [hip[i] + THIGH * (math.cos(bend) * down[i] + math.sin(bend) * forward[i]) for i in range(3)]

    def bone(start, end):
        y = unit(subtract(start, end))
        return transpose([hinge, y, cross(hinge, y)])
    return bone(hip, knee), bone(knee, target), turn(0, pitch)


def upper_body(cycles):
    """Local rotations above the hips: the spine undoes what the hips do and a little more, arms swing against legs."""
    local = {"Spine": euler(wave(cycles, -1.5, 0.33), 0.5, wave(cycles, 3, 0.02)),
             "Spine1": euler(wave(cycles, -1, 0.33), 1, wave(cycles, 4, 0.04)),
             "Chest": euler(wave(cycles, -0.5, 0.33), 1, wave(cycles, 4, 0.06)),
             "Neck": euler(0, -1, wave(cycles, -3, 0.06)),
             "Head": euler(0, -2.5 + wave(cycles, 0.8, 0.1, 2), wave(cycles, -3, 0.06))}
    for side, s in (("Left", 1), ("Right", -1)):
        forward = wave(cycles, -s, 0.04)  # 1 when this arm is in front: against the leg of its side
        local[side + "Shoulder"] = euler(-4 * s, 0, -3 * s * forward)
        # The arms point sideways at rest: lowered about Z first, then swung about X.
        local[side + "Arm"] = multiply(turn(0, -22 * forward + 2), turn(2, -74 * s))
        local[side + "ForeArm"] = euler(0, 0, -s * (22 + 14 * forward))
        local[side + "Hand"] = euler(0, -4 * forward, -5 * s)
        local[side + "Thumb"] = euler(-8 * s, 0, -10 * s)
        local[side + "Thumb1"] = euler(0, 0, 12 * s)
        local[side + "Fingers"] = euler(-(20 + 4 * forward) * s, 0, 0)
        local[side + "Fingers1"] = euler(-(28 + 5 * forward) * s, 0, 0)
    return local


def pose(cycles):
    """The place of the hips and the local rotation of every joint."""
    place, turned = hips(cycles)
    local = upper_body(cycles)
    local["Hips"] = turned
    for side, s in (("Left", 1), ("Right", -1)):
        hip = add(place, apply(turned, (HIP_SIDE * s, -HIP_DROP, 0)))
        target, pitch = ankle(cycles, s)
        thigh, shin, foot = leg(turned, hip, target, pitch)
        local[side + "UpLeg"] = multiply(transpose(turned), thigh)
        local[side + "Leg"] = multiply(transpose(thigh), shin)
        local[side + "Foot"] = multiply(transpose(shin), foot)
        local[side + "Toe"] = turn(0, -toe_bend(cycles, s) * max(0.0, pitch))
    return place, local


def toe_bend(cycles, side):
    """How much of the foot's pitch the toes undo: all of it while they bear weight, none soon after."""
    phase = (cycles + (0.0 if side > 0 else 0.5)) % 1.0
    return 1 - smooth((phase - STANCE) / (1 - STANCE) * 2)


# The file ------------------------------------------------------------------------------------------------------------

def number(value, digits):
    text = f"{round(value, digits) + 0.0:.{digits}f}".rstrip("0").rstrip(".")
    return "0" if text == "-0" else text


def hierarchy(joints, ends):
    lines, open_joints = ["HIERARCHY"], []

    def put(text):
        lines.append("\t" * len(open_joints) + text)

    def close():
        open_joints.pop()
        put("}")
    for name, parent, offset in joints:
        while open_joints and open_joints[-1] != parent:
            close()
        put(("JOINT " if parent else "ROOT ") + name)
        put("{")
        open_joints.append(name)
        put("OFFSET " + " ".join(number(c, 4) for c in offset))
        position = "" if parent else "Xposition Yposition Zposition "
        put(f"CHANNELS {3 if parent else 6} {position}Zrotation Xrotation Yrotation")
        if name in ends:
            put("End Site")
            put("{")
            put("\tOFFSET " + " ".join(number(c, 4) for c in ends[name]))
            put("}")
    while open_joints:
        close()
    return lines


def places(joints, row):
    """Forward kinematics of one row of channels: the world position of every joint by name."""
    at, turned, column = {}, {}, 0
    for name, parent, offset in joints:
        if parent is None:
            at[name] = add(offset, row[:3])
            column = 3
        else:
            at[name] = add(at[parent], apply(turned[parent], offset))
        own = euler(*row[column:column + 3])
        turned[name] = multiply(turned[parent], own) if parent else own
        column += 3
    return at, turned


def check(joints, rows):
    """Heels, soles and balls that bear weight stay where they are, within a twentieth of a millimetre."""
    first = {}
    for frame, row in enumerate(rows):
        at, turned = places(joints, row)
        for side, s in (("Left", 1), ("Right", -1)):
            phase = (frame / CYCLE + (0.0 if s > 0 else 0.5)) % 1.0
            pivots = [("heel", HEEL)] * (phase < BALL_ROLL) + [("ball", BALL)] * (HEEL_ROLL <= phase < STANCE)
            for what, pivot in (("heel", HEEL), ("ball", BALL)):
                spot = add(at[side + "Foot"], apply(turned[side + "Foot"], (0, *pivot)))
                bears = (what, pivot) in pivots
                old = first.get((side, what))
                assert not (bears and old) or length(subtract(spot, old)) < 0.005, (frame, side, what, spot, old)
                first[side, what] = (old or spot) if bears else None


def motion(joints):
    rows = []
    for frame in range(FRAMES):
        place, local = pose(frame / CYCLE)
        row = list(place)
        for name, _, _ in joints:
            row += angles(local[name])
        rows.append([round(value, 4) for value in row])
    return rows


def main():
    joints, ends = skeleton()
    rows = motion(joints)
    check(joints, rows)
    lines = hierarchy(joints, ends) + ["MOTION", f"Frames: {FRAMES}", "Frame Time: 0.033333"]
    lines += [" ".join(number(value, 4) for value in row) for row in rows]
    text = "\n".join(lines) + "\n"
    target = sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent / "examples" / "walk.bvh"
    if target == "-":
        sys.stdout.write(text)
    else:
        pathlib.Path(target).write_text(text, encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main()
