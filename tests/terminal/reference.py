#!/usr/bin/env python3
"""Prints the cases of the scripts that name tmux as their reference on which its screen differs.

A development tool; no part of scripts/test. It does not compare the looks of characters. Names of
scripts as arguments restrict it to these.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

FOLDER = pathlib.Path(__file__).parent
CASE = re.compile(r'^(\+ )?"(.*)"\n(?:    looks.*\n)?    screen ((?:.*)(?:\n        .*)*)', re.M)
ESCAPE = re.compile(rb"\\(x[0-9A-Fa-f]{2}|.)")
DRAWINGS = str.maketrans("`abcdefghijklmnopqrstuvwxyz{|}~", "◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺⎻─⎼⎽├┤┴┬│≤≥π≠£·")
NAMES = {b"e": b"\x1b", b"r": b"\r", b"n": b"\n", b"t": b"\t"}
# Waits for the reply to a request that follows the bytes: tmux has then interpreted all of them.
FEED = ("stty raw -echo; cat {}; printf '\\033[6n'; dd bs=32 count=1 >/dev/null 2>&1; "
        "tmux -L reference wait-for -S fed; sleep 60")


def tmux(*arguments):
    return subprocess.run(["tmux", "-u", "-L", "reference", "-f", "/dev/null", *arguments],
                          timeout=5, check=True, capture_output=True, text=True,
                          env={**os.environ, "LC_ALL": "C.UTF-8"}).stdout


def unescaped(text):
    return ESCAPE.sub(lambda m: NAMES.get(m[1], bytes.fromhex(m[1][1:].decode())
                                          if len(m[1]) > 1 else m[1]), text.encode())


def expected(screen):
    """The text, of a small screen with line ends only where a text ends, and the cursor."""
    if not screen.startswith("\n"):
        rows, cursor = re.fullmatch(r"(.*[|~])(.*)", screen).groups()
        return re.sub("[~^]", "", rows).replace("|", "\n"), cursor
    *rows, cursor = screen.replace("\n        ", "\n")[1:].split("\n")
    return "".join(row[:-1] + "\n" for row in rows), cursor


def drawn(text):
    """Line drawing, which tmux keeps as letters between SO and SI, as characters."""
    text = re.sub("\x1b\\[[0-9;:]*m", "", text)
    return re.sub("\x0e([^\x0f]*)\x0f?", lambda m: m[1].translate(DRAWINGS), text)


def shown(columns):
    options = ["-J", "-S", "-"] if columns == 8 else []
    text = re.sub(" +$", "", drawn(tmux("capture-pane", "-p", "-e", *options)), flags=re.M)
    row, column, flag = tmux("display-message", "-p",
                             "#{cursor_y} #{cursor_x} #{cursor_flag}").split()
    hidden = "" if flag == "1" else " hidden"
    return text, f"{row},{min(int(column), columns - 1)}{hidden}"


def compare(script, feed):
    columns, lines = (80, 24) if "\nsize 80 24\n" in script else (8, 4)
    tmux("resize-window", "-x", str(columns), "-y", str(lines))
    sent = b""
    for more, data, screen in CASE.findall(script):
        sent = (sent if more else b"") + unescaped(data)
        if columns > 8 and not sent:
            continue  # not yet of that size
        feed.write_bytes(sent)
        tmux("clear-history", ";", "respawn-pane", "-k", FEED.format(feed), ";", "wait-for", "fed")
        text, cursor = expected(screen)
        cursor = re.sub(" (reversed|cursor-keys|keypad)", "", cursor)
        found = shown(columns)
        if found != (unescaped(text).decode(), cursor):
            print(f'"{data[-300:]}"\n    here {screen}\n    tmux {found[0]}{found[1]}')


subprocess.run([FOLDER.parents[1] / "scripts/install", "reference"], check=True)
tmux("new-session", "-d", "-x", "8", "-y", "4", ";", "set-option", "status", "off")
with tempfile.TemporaryDirectory() as folder:
    for path in sorted(FOLDER.glob("*.terminal")):
        script = path.read_text(encoding="utf-8")
        if "Reference: tmux" in script and (not sys.argv[1:] or path.stem in sys.argv[1:]):
            compare(script, pathlib.Path(folder) / "bytes")
tmux("kill-server")
