#!/usr/bin/env python3
"""check_console.py CONSOLE-PROGRAM: plays a shell and its user at a terminal of its own."""

import fcntl
import os
import pty
import re
import select
import signal
import subprocess
import sys
import termios
import time
import unittest
from pathlib import Path

PROGRAM = sys.argv.pop(1)
REFUSED, WRONG_TEXT = 7, 8
PATIENCE = 10  # seconds
ENDING = ("INT", "TERM", "HUP", "QUIT", "ALRM", "USR1")
ours, terminal = pty.openpty()


def to_foreground():
    os.tcsetpgrp(terminal, os.getpid())
    for name in ("TTOU", *ENDING):  # whatever this process ignores
        signal.signal(signal.Signals["SIG" + name], signal.SIG_DFL)


class Console(unittest.TestCase):
    def start(self, what, prompt="Password: "):
        self.screen, self.seen = "", 0
        self.program = subprocess.Popen([PROGRAM, what], stdin=terminal, stderr=terminal,
                                        stdout=subprocess.PIPE, process_group=0,
                                        preexec_fn=to_foreground)
        self.addCleanup(self.program.stdout.close)
        self.addCleanup(self.program.wait)
        self.addCleanup(self.program.kill)
        self.expect(prompt)
        self.assertEqual(self.echoes(), what == "user")

    def expect(self, text):
        while text not in self.screen[self.seen:]:
            self.assertTrue(self.read_screen(PATIENCE), f"no '{text}' in '{self.screen}'")
        self.seen = self.screen.index(text, self.seen) + len(text)

    def read_screen(self, patience):
        readable = select.select([ours], [], [], patience)[0]
        self.screen += os.read(ours, 512).decode() if readable else ""
        return readable

    def type(self, keys):
        os.write(ours, keys.encode())

    def send(self, number):
        self.program.send_signal(number)
        pending = re.compile(r"^State:\t[^Z].*^S..Pnd:\t0*[1-9a-f]", re.M | re.S)
        end = time.monotonic() + PATIENCE  # what is typed from here on must not overtake the signal
        while time.monotonic() < end and pending.search(
                Path(f"/proc/{self.program.pid}/status").read_text()):
            time.sleep(0.001)

    def echoes(self):
        return bool(termios.tcgetattr(ours)[3] & termios.ECHO)

    def status(self):
        """The next one, as a shell has it from waitpid."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            pid, status = os.waitpid(self.program.pid, os.WNOHANG | os.WUNTRACED)
            if pid:
                self.assertTrue(self.echoes(), "the terminal is not put back")
                return status if os.WIFSTOPPED(status) else os.waitstatus_to_exitcode(status)
            time.sleep(0.001)
        return None

    def ends(self, code, screen=None):
        self.assertEqual(self.status(), code)
        while self.read_screen(0):
            pass
        if screen:
            self.assertEqual(self.screen, screen)
        self.assertEqual(self.program.stdout.read(), b"")

    def test_the_password_is_typed_without_echo(self):
        # The erase key still works; an end of file ends a line and alone is no answer; an empty
        # line is one.
        for keys, code in (("sesamee\x7f\n", 0), ("sesame\x04\x04", 0), ("\x04", REFUSED),
                           ("\n", WRONG_TEXT)):
            with self.subTest(keys=keys):
                self.start("password")
                self.type(keys)
                self.ends(code, "Password: \r\n")

    def test_the_user_name_is_echoed(self):
        self.start("user", "User name: ")
        self.type("operator\n")
        self.ends(0, "User name: operator\r\n")

    def test_a_signal_that_ends_the_process_first_puts_the_terminal_back(self):
        for name in ENDING:
            with self.subTest(signal=name):
                number = signal.Signals["SIG" + name]
                self.start("thread" if name == "TERM" else "password")
                self.type("ses")
                self.send(number)
                self.ends(-number)

    def test_a_stopped_process_leaves_the_echo_on_and_asks_again(self):
        self.start("password")
        self.type("left over\x1a")
        self.assertTrue(os.WIFSTOPPED(self.status()))
        self.send(signal.SIGCONT)
        self.expect("Password: ")
        self.assertFalse(self.echoes())
        self.type("sesame\n")
        self.ends(0)

    def test_the_applications_own_handler_runs_and_the_answer_is_none(self):
        self.start("handler")
        self.type("\x03")
        self.ends(REFUSED)

    def test_an_ignored_signal_stays_ignored(self):
        self.start("ignore")
        self.send(signal.SIGINT)
        self.type("sesame\n")
        self.ends(0)


if __name__ == "__main__":
    if child := os.fork():  # a process that leads a session
        sys.exit(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
    os.setsid()
    fcntl.ioctl(terminal, termios.TIOCSCTTY, 0)
    signal.signal(signal.SIGTTOU, signal.SIG_IGN)
    unittest.main()
