#!/usr/bin/env python3
"""Checks the tree's shape: who includes whom, how long files are, that links in the documentation lead somewhere.

Usage: check_tree.py [ROOT]. Prints one line for each breach and exits 1 if there is any.
"""
import re
import sys
from pathlib import Path

# From the ground up. A folder includes itself and what stands on a lower floor; folders on one floor do not know each
# other. "plugins" and "hosts" stand for each of their folders: plugins/bvh and plugins/gltf are strangers.
FLOORS = [
    ["qel/utils"],
    ["qel/db"],
    ["qel/solvers"],
    ["qel/sg"],
    ["qel/lua", "qel/widgets"],
    ["tavo/app"],
    ["tavo/objects"],
    ["tavo/animation"],
    ["tavo/kinematics"],
    ["tavo/trajectories"],
    ["tavo/physics"],
    ["tavo/interaction"],
    ["tavo/commands"],
    ["tavo/extension"],
    ["tavo"],
    ["plugins"],
    ["hosts"],
]
FLOOR_OF = {folder: floor for floor, folders in enumerate(FLOORS) for folder in folders}
LAYERED = ("qel", "tavo", "plugins", "hosts")
SOURCES = LAYERED + ("tests", "bench", "fuzz")

# wxBase's headers: the only ones of wx that need neither a display nor GTK.
WX_BASE = set(
    """any app arrstr atomic base64 buffer chartype cmdline confbase config convauto crt datetime debug defs dir dynarray
    dynlib dynload event evtloop except ffile file fileconf filefn filename filesys hash hashmap hashset init intl list
    log longlong math memory mimetype module msgout msgqueue mstream object platform platinfo process ptr_scpd regex
    scopedptr scopeguard sharedptr sstream stdpaths stopwatch strconv stream string sysopt textfile thread time timer
    tokenzr translation tracker txtstrm types uri utils variant vector version wfstream wxchar wxcrt xml/xml
    zipstrm zstream""".split()
)
GRAPHICS = re.compile(r"(GL|GLES\d?|EGL|gtk|gdk|glib|X11|epoxy)/|(gtk|gdk|glib|glew|osmesa)\.h$", re.IGNORECASE)

LONGEST = {".cpp": 900, ".h": 600}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")


def folder_of(path):
    """The folder with a floor of its own that holds `path`: "qel/db", "plugins/bvh", or "tavo" for tavo/tavo.h."""
    parts = path.split("/")
    return parts[0] if len(parts) < 3 else "/".join(parts[:2])


def floor_of(folder):
    top = folder.split("/")[0]
    return FLOOR_OF.get(top if top in ("plugins", "hosts") else folder)


def include_breach(file, target, quoted, root):
    """Why `file` may not include `target`, or None."""
    if target.split("/")[0] in LAYERED:
        mine, theirs = folder_of(file), folder_of(target)
        if floor_of(theirs) is None:
            return f"{theirs} has no floor"
        if mine != theirs and floor_of(theirs) >= floor_of(mine):
            return f"{theirs} does not stand below {mine}"
    if quoted and not (root / target).is_file():
        return "is not a file under the root"
    if file.startswith(("qel/", "tavo/")):
        if target.startswith("wx/") and target[3:].removesuffix(".h") not in WX_BASE:
            return "is not one of wxBase's headers"
        if GRAPHICS.match(target):
            return "needs a display"
    return None


def check_includes(root, file, text):
    if file.split("/")[0] not in LAYERED:
        return
    if floor_of(folder_of(file)) is None:
        yield f"{file}: {folder_of(file)} has no floor"
        return
    for match in INCLUDE.finditer(text):
        reason = include_breach(file, match[2], match[1] == '"', root)
        if reason:
            line = text.count("\n", 0, match.start(2)) + 1
            yield f"{file}:{line}: {match[2]}: {reason}"


def check_file(file, text):
    suffix = Path(file).suffix
    length = text.count("\n")
    if length > LONGEST[suffix] and "_tables" not in Path(file).name:
        yield f"{file}: {length} lines, more than {LONGEST[suffix]}"
    if suffix == ".h" and not re.search(r"^#pragma once$", text, re.MULTILINE):
        yield f"{file}: no #pragma once"


def check_links(root):
    for page in [*root.glob("*.md"), *root.glob("docs/**/*.md")]:
        for link in LINK.findall(page.read_text(encoding="utf-8")):
            target = link.split("#")[0]
            if target and "://" not in target and not (page.parent / target).exists():
                yield f"{page.relative_to(root)}: {link} leads nowhere"


def check(root):
    """Every breach under `root`, a line each, in the order of the tree."""
    files = [path for top in SOURCES for path in (root / top).rglob("*") if path.suffix in LONGEST]
    for path in sorted(files):
        file, text = path.relative_to(root).as_posix(), path.read_text(encoding="utf-8")
        yield from check_includes(root, file, text)
        yield from check_file(file, text)
    yield from check_links(root)


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    breaches = list(check(root))
    for breach in breaches:
        print(breach)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
