#!/usr/bin/env python3
"""The console at a terminal: `tavo repl` under a pseudo-terminal, as a person at the keys has it.

Usage: repl_terminal_test.py BUILD/bin/tavo. Exit codes: 0 as it should be, 1 not, 77 there is no host.
"""
import contextlib
import os
import pty
import select
import signal
import sys
import tempfile
import time
import unittest
from pathlib import Path

HOST = ""
UP, TAB = "\x1b[A", "\t"
PATIENCE = 30  # seconds; the machine may be busy


class Terminal:
    def __init__(self, home):
        self.seen = ""
        self.process, self.keys = pty.fork()
        if self.process == 0:
            environment = os.environ | {"HOME": home, "XDG_STATE_HOME": f"{home}/state", "TERM": "xterm"}
            os.execve(HOST, [HOST, "repl"], environment)

    def wait_for(self, text):
        """What has come since the last wait, up to and with the text."""
        end = time.monotonic() + PATIENCE
        while text not in self.seen:
            if time.monotonic() > end:
                raise AssertionError(f"no {text!r} in {self.seen!r}")
            if select.select([self.keys], [], [], 0.1)[0]:
                self.seen += self.read()
        before, _, self.seen = self.seen.partition(text)
        return before + text

    def read(self):
        data = self.read_any()
        if not data:
            raise AssertionError(f"it ended: {self.seen!r}")
        return data.decode("utf-8", "replace")

    def read_any(self):
        try:
            return os.read(self.keys, 4096)
        except OSError:  # the other side is closed
            return b""

    def type(self, text):
        os.write(self.keys, text.encode())

    def exit_code(self, keys=""):
        """Reads to the end: a terminal that nobody reads holds its program up. The keys are typed until it ends: what
        comes while the terminal changes its mode is lost."""
        end = time.monotonic() + PATIENCE
        while not select.select([self.keys], [], [], 0.1)[0] or self.read_any():
            with contextlib.suppress(OSError):
                self.type(keys)
            if time.monotonic() > end:
                os.kill(self.process, signal.SIGKILL)
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


class ReplAtATerminal(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def start(self):
        terminal = Terminal(self.folder.name)
        self.addCleanup(os.close, terminal.keys)
        terminal.wait_for("tavo> ")
        return terminal

    def quit(self, terminal):
        terminal.type(":quit\n")
        self.assertEqual(terminal.exit_code(), 0)

    def test_tab_completes_and_up_brings_the_line_before(self):
        terminal = self.start()
        terminal.type("math.hu" + TAB + " > 10\n")
        terminal.wait_for("true\r\n")
        terminal.wait_for("tavo> ")
        terminal.type(UP + " and 6 * 7\n")
        terminal.wait_for("42\r\n")
        self.quit(terminal)

    def test_history_outlives_the_console(self):
        first = self.start()
        first.type("11 * 11\n")
        first.wait_for("121\r\n")
        self.quit(first)
        kept = Path(self.folder.name, "state/tavo/repl_history")
        self.assertIn("11", kept.read_text())
        second = self.start()
        second.type(UP + UP + "\n")
        second.wait_for("121\r\n")
        self.quit(second)

    def test_an_unfinished_chunk_asks_for_more(self):
        terminal = self.start()
        terminal.type("for i = 5, 5 do\n")
        terminal.wait_for(".. ")
        terminal.type("print(i * i) end\n")
        terminal.wait_for("25\r\n")
        self.quit(terminal)

    def test_the_end_of_the_input_ends_it(self):
        terminal = self.start()
        self.assertEqual(terminal.exit_code("\x04"), 0)


if __name__ == "__main__":
    HOST = os.path.abspath(sys.argv.pop(1))
    if not os.access(HOST, os.X_OK):
        sys.exit(77)
    unittest.main()
