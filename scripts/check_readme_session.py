#!/usr/bin/env python3
"""Runs the terminal sessions shown in a page and compares what they print, to the letter.

A session is a fenced block right after the line "<!-- session -->". Its "$ " lines are run in order by bash, in a
temporary directory that holds a copy of examples/, with the given host on PATH as `tavo`; the lines up to the next "$ "
are what the command prints, errors included. Every command must succeed.

Usage: check_readme_session.py --host BUILD/bin/tavo [--page README.md] [--update] [--keep FOLDER]
--update writes what was really printed into the page; --keep copies the files that the commands left. Exit codes: 0 the same, 1 a difference, 77 there is no host.
"""
import argparse
import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SESSION = re.compile(r"(?<=<!-- session -->\n)(```\w*\n)(.*?)(?=^```$)", re.DOTALL | re.MULTILINE)
SKIPPED = 77


def prepare(folder, host):
    """A place to run in; returns the environment of its commands."""
    if (ROOT / "examples").is_dir():
        shutil.copytree(ROOT / "examples", folder / "work/examples")
    for name in ("work", "bin", "home"):
        (folder / name).mkdir(exist_ok=True)
    (folder / "bin/tavo").symlink_to(host)
    plain = {"HOME": str(folder / "home"), "XDG_CONFIG_HOME": str(folder / "home"), "LC_ALL": "C.UTF-8"}
    plain |= {"PATH": f"{folder / 'bin'}:{os.environ['PATH']}", "NO_COLOR": "1", "TERM": "dumb"}
    return os.environ | plain


def run(command, folder, environment):
    done = subprocess.run(
        ["bash", "-c", command],
        cwd=folder / "work",
        env=environment,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=120,
    )
    printed = done.stdout.decode("utf-8", "replace")
    if done.returncode != 0:
        print(f"$ {command}\n{printed}exit code {done.returncode}", file=sys.stderr)
    return printed + ("" if printed.endswith("\n") or not printed else "\n"), done.returncode == 0


def played(page, host, keep=None):
    """The page as it would read with what its commands print now, and whether every command succeeded. The files that
    they left go to `keep`."""
    succeeded = True
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        environment = prepare(folder, host)

        def replay(match):
            nonlocal succeeded
            lines = [match[1]]
            for command in re.findall(r"^\$ (.*)$", match[2], re.MULTILINE):
                printed, done = run(command, folder, environment)
                succeeded = succeeded and done
                lines += [f"$ {command}\n", printed]
            return "".join(lines)

        now = SESSION.sub(replay, page)
        for file in (folder / "work").iterdir() if keep else ():
            if file.is_file():
                shutil.copy(file, keep)
        return now, succeeded


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--host", type=Path, required=True)
    parser.add_argument("--page", type=Path, default=ROOT / "README.md")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--keep", type=Path)
    arguments = parser.parse_args()
    if not arguments.host.is_file():
        print(f"skipped: there is no {arguments.host}")
        return SKIPPED
    page = arguments.page.read_text(encoding="utf-8")
    now, succeeded = played(page, arguments.host.resolve(), arguments.keep)
    if arguments.update and succeeded:
        arguments.page.write_text(now, encoding="utf-8")
        return 0
    name = arguments.page.name
    sys.stdout.writelines(difflib.unified_diff(page.splitlines(True), now.splitlines(True), name, "what is printed"))
    return 0 if succeeded and page == now else 1


if __name__ == "__main__":
    sys.exit(main())
