#!/usr/bin/env python3
"""Records what vttest sends for its menus 1, 2, 3, 5 and 8 into vttest-*.terminal.

Runs vttest on a pseudo-terminal of 80 x 24 cells, presses the keys of a user who passes each screen,
and writes one action for each answer of vttest. `trace_tests --accept` then adds the screens, to be
compared with what vttest says must be seen. A development tool; no part of scripts/test.
"""
import fcntl
import os
import pathlib
import pty
import select
import struct
import subprocess
import termios

FOLDER = pathlib.Path(__file__).parent
QUIET_SECONDS = 0.5
MAIN_MENU = b"Enter choice number (0 - 12): "
RETURN = "\n"
LEDS = ["1\n"] + [RETURN] * 6
AUTO_REPEAT = ["2\n", "a\n", "bbb\n", RETURN]
CURSOR_KEYS = ["4\n", "\t", "\t", "\t", RETURN]
KEYPAD = ["5\n", "\t", "\t", "\t", "\t", RETURN]
CONTROL_KEYS = ["9\n", "\x7f", RETURN]
MENUS = {
    "cursor": (1, "cursor movements and wrapping", []),
    "screen": (2, "screen features", []),
    "sets": (3, "character sets", []),
    "keyboard": (5, "keyboard, without presses of the keys themselves",
                 LEDS + AUTO_REPEAT + CURSOR_KEYS + KEYPAD + CONTROL_KEYS + ["0\n"]),
    "vt102": (8, "inserting and deleting", []),
}

DIFFERENCES = {
    "cursor": ["# tmux differs in the wrapping screens: BS after the last column leaves its cursor",
               "# in that column."],
    "screen": ["# tmux differs in the first screen of origin mode: a new region sends its cursor to",
               "# the home of the screen."],
    "sets": ['# tmux differs: it has no UK set, and shows "_" in the set of special graphics.'],
}


class Session:
    def __init__(self):
        self.process, self.line = pty.fork()
        if self.process == 0:
            os.environ["TERM"] = "vt100"
            # 80 columns also where the test would switch to 132: the terminal keeps its width.
            os.execvp("vttest", ["vttest", "24x80.80"])
        fcntl.ioctl(self.line, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))

    def answer(self):
        received = b""
        while select.select([self.line], [], [], QUIET_SECONDS)[0]:
            received += os.read(self.line, 65536)
        return received

    def press(self, keys):
        os.write(self.line, keys.encode())
        return self.answer()

    def close(self):
        os.kill(self.process, 9)
        os.waitpid(self.process, 0)
        os.close(self.line)


def quoted(data):
    names = {13: "\\r", 10: "\\n", 27: "\\e", 9: "\\t", 34: '\\"', 92: "\\\\"}
    return "".join(names.get(b, chr(b) if 32 <= b < 127 else f"\\x{b:02X}") for b in data)


def record(number, keys):
    session = Session()
    steps = [session.answer(), session.press("\x1b[?6c"), session.press(f"{number}\n")]
    for key in keys:
        steps.append(session.press(key))
    while not steps[-1].endswith(MAIN_MENU) and len(steps) < 100:
        steps.append(session.press(RETURN))
    session.close()
    return steps[1:]


subprocess.run([FOLDER.parents[1] / "scripts/install", "reference"], check=True)
for name, (number, title, keys) in MENUS.items():
    lines = [f"# vttest 2.7, menu {number}: {title}. Recorded by record_vttest.py.",
             "# Reference: tmux 3.3a.", *DIFFERENCES.get(name, []), '""', "size 80 24"]
    lines += [f'+ "{quoted(step)}"' for step in record(number, keys)]
    (FOLDER / f"vttest-{name}.terminal").write_text("\n".join(lines) + "\n")
