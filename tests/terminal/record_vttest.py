#!/usr/bin/env python3
"""Records what vttest sends for the menus that the comments of vttest-*.terminal name.

Runs vttest on a pseudo-terminal of 80 x 24 cells, presses the keys that the comments state and then
RETURN on each screen, and writes one action for each answer of vttest. `trace_tests --accept` then
adds the screens, to be compared with what vttest says must be seen. A development tool; no part of
scripts/test.
"""
import fcntl
import os
import pathlib
import pty
import re
import select
import struct
import subprocess
import termios

FOLDER = pathlib.Path(__file__).parent
QUIET_SECONDS = 0.5
MAIN_MENU = b"Enter choice number (0 - 12): "
NAMES = {13: "\\r", 10: "\\n", 27: "\\e", 9: "\\t", 34: '\\"', 92: "\\\\"}


def quoted(data):
    return "".join(NAMES.get(b, chr(b) if 32 <= b < 127 else f"\\x{b:02X}") for b in data)


def press(line, keys):
    """What vttest answers to the keys."""
    os.write(line, keys.encode())
    received = b""
    while select.select([line], [], [], QUIET_SECONDS)[0]:
        received += os.read(line, 65536)
    return received


def record(menu, keys):
    process, line = pty.fork()
    if process == 0:
        os.environ["TERM"] = "vt100"
        # 80 columns also where the test would switch to 132: the terminal keeps its width.
        os.execvp("vttest", ["vttest", "24x80.80"])
    fcntl.ioctl(line, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
    steps = [press(line, text) for text in ["", "\x1b[?6c", menu + "\n", *keys]]
    while not steps[-1].endswith(MAIN_MENU) and len(steps) < 100:
        steps.append(press(line, "\n"))
    os.kill(process, 9)
    os.waitpid(process, 0)
    os.close(line)
    return steps[1:]


subprocess.run([FOLDER.parents[1] / "scripts/install", "reference"], check=True)
for path in sorted(FOLDER.glob("vttest-*.terminal")):
    comments = re.findall("^#.*", path.read_text(encoding="utf-8"), re.M)
    menu = re.search(r"menu (\d+)", comments[0])[1]
    keys = [key.encode().decode("unicode_escape") for comment in comments
            if comment.startswith("# Keys:") for key in re.findall('"(.*?)"', comment)]
    lines = [*comments, '""', "size 80 24"]
    lines += [f'+ "{quoted(step)}"' for step in record(menu, keys)]
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")
