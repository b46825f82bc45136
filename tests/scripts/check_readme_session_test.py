#!/usr/bin/env python3
"""The check of the sessions in the documentation must notice a wrong line, a failed command and a missing host."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts/check_readme_session.py"
PAGE = "# Page\n\n<!-- session -->\n```console\n$ tavo say one\none\n$ tavo say two > two.txt\n$ cat two.txt\n{}\n```\nEnd\n"


class CheckReadmeSession(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.host, self.page = Path(folder.name, "host"), Path(folder.name, "page.md")
        self.host.write_text('#!/bin/sh\n[ "$1" = say ] && echo "$2"\n')
        self.host.chmod(0o755)

    def check(self, text, *options):
        self.page.write_text(text)
        command = [sys.executable, SCRIPT, "--host", self.host, "--page", self.page, *options]
        return subprocess.run(command, capture_output=True, text=True)

    def test_a_true_session_passes(self):
        self.assertEqual(self.check(PAGE.format("two")).returncode, 0)

    def test_a_wrong_line_fails_and_is_shown(self):
        done = self.check(PAGE.format("three"))
        self.assertEqual(done.returncode, 1)
        self.assertIn("-three\n+two\n", done.stdout)

    def test_a_missing_line_fails(self):
        self.assertEqual(self.check(PAGE.replace("one\none", "one").format("two")).returncode, 1)

    def test_a_command_that_fails_fails_the_session(self):
        self.assertEqual(self.check(PAGE.format("two").replace("cat two.txt\ntwo", "tavo sing")).returncode, 1)

    def test_update_writes_what_is_printed_and_keeps_the_rest(self):
        self.assertEqual(self.check(PAGE.format("three"), "--update").returncode, 0)
        self.assertEqual(self.page.read_text(), PAGE.format("two"))

    def test_update_keeps_the_page_when_a_command_fails(self):
        page = PAGE.format("three").replace("say one", "sing")
        self.assertEqual(self.check(page, "--update").returncode, 1)
        self.assertEqual(self.page.read_text(), page)

    def test_keep_copies_what_the_commands_left(self):
        with tempfile.TemporaryDirectory() as name:
            self.assertEqual(self.check(PAGE.format("two"), "--keep", name).returncode, 0)
            self.assertEqual([(f.name, f.read_text()) for f in Path(name).iterdir()], [("two.txt", "two\n")])

    def test_without_a_host_it_is_skipped(self):
        self.host.unlink()
        self.assertEqual(self.check(PAGE.format("two")).returncode, 77)


if __name__ == "__main__":
    unittest.main()
