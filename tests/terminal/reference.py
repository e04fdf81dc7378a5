#!/usr/bin/env python3
"""Prints the cases of the scripts that name tmux as their reference on which its screen differs.

A development tool; no part of scripts/test. It does not compare the looks of characters.
"""
import pathlib
import re
import subprocess

FOLDER = pathlib.Path(__file__).parent
CASE = re.compile(r'^(\+ )?"(.*)"\n(?:    looks.*\n)?    screen (.*[|~])(.*)', re.M)
# Waits for the reply to a request that follows the bytes: tmux has then interpreted all of them.
FEED = "stty raw -echo; printf '{}\\033[6n'; head -c 6 >/dev/null; tmux wait-for -S fed; cat"


def tmux(*arguments):
    return subprocess.run(["tmux", "-L", "reference", "-f", "/dev/null", *arguments], timeout=5,
                          check=True, capture_output=True, text=True).stdout


def unescaped(text):
    return text.replace("\\e", "\\x1b").encode().decode("unicode_escape")


subprocess.run([FOLDER.parents[1] / "scripts/install", "reference"], check=True)
tmux("new-session", "-d", "-x", "8", "-y", "4", ";", "set-option", "status", "off", ";",
     "resize-window", "-y", "4")
scripts = [path.read_text() for path in sorted(FOLDER.glob("*.terminal"))]
sent = ""
for more, data, rows, cursor in CASE.findall("".join(s for s in scripts if "Reference: tmux" in s)):
    sent = (sent if more else "") + unescaped(data)
    octal = "".join(f"\\{byte:03o}" for byte in sent.encode("latin-1"))
    tmux("clear-history", ";", "respawn-pane", "-k", FEED.format(octal), ";", "wait-for", "fed")
    lines = re.sub(" +$", "", tmux("capture-pane", "-p", "-J", "-S", "-"), flags=re.M)
    place = tmux("display-message", "-p", "#{cursor_y},#{cursor_x} #{cursor_flag}")
    found = lines + place.replace(",8", ",7").replace(" 1\n", "").replace(" 0\n", " hidden")
    if found != unescaped(re.sub("[~^]", "", rows)).replace("|", "\n") + cursor:
        print(f'"{data}"\n    here {rows}{cursor}\n    tmux {found!r}')
tmux("kill-server")
