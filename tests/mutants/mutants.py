#!/usr/bin/env python3
"""Puts single-line faults into copies of the sources and reports those that no native test notices.

mutants.py ROOT WORK COUNT SEED FOLDER...

Each fault changes one line of a source below src/FOLDER: a condition is negated, a comparison or a
constant shifted, an operator exchanged, or a statement left out. Two copies are built incrementally
side by side. A fault that does not compile is not counted. The same seed gives the same faults.
"""
import concurrent.futures
import pathlib
import random
import re
import shutil
import subprocess
import sys

SUITES = ["trace_tests", "unit_tests", "contract_tests"]
TIMEOUT_S = 120  # a fault that makes a test hang is noticed

EXCHANGES = [
    (re.compile(r" < "), " <= "), (re.compile(r" <= "), " < "),
    (re.compile(r" > "), " >= "), (re.compile(r" >= "), " > "),
    (re.compile(r" == "), " != "), (re.compile(r" != "), " == "),
    (re.compile(r" && "), " || "), (re.compile(r" \|\| "), " && "),
    (re.compile(r"(?<=[\w)]) \+ (?=[\w(])"), " - "), (re.compile(r"(?<=[\w)]) - (?=[\w(])"), " + "),
    (re.compile(r"\btrue\b"), "false"), (re.compile(r"\bfalse\b"), "true"),
]
CONDITION = re.compile(r"^(\s*(?:\} else )?(?:if|while) \()(.*)(\)(?: \{| [\w*].*;)?)$")
NUMBER = re.compile(r"(?<![\w.\"'])\d+(?![\w.\"'])")
STATEMENT = re.compile(r"^\s+(?!return|throw|using|static|const|auto|else|case|break|continue|goto)"
                       r"[\w:.>\-\[\]*()]+(\(.*\)| [-+|&]?= .*|\+\+|--);$")


def code_of(line):
    """`line` with the contents of its strings blanked and its comment cut off."""
    line = re.sub(r'"(?:[^"\\]|\\.)*"', lambda m: '"' + "~" * (len(m.group()) - 2) + '"', line)
    return line.split("//")[0].rstrip()


def faults_of(line):
    """All faulty versions of `line`."""
    code = code_of(line)
    if not code.strip() or code.lstrip().startswith(("#", "template", "static_assert", "namespace")):
        return []
    faults = []
    condition = CONDITION.match(code)
    if condition and condition.group(2).count("(") == condition.group(2).count(")") \
            and ";" not in condition.group(2):
        start, end = condition.span(2)
        faults.append(line[:start] + "!(" + line[start:end] + ")" + line[end:])
    for pattern, other in EXCHANGES:
        for match in pattern.finditer(code):
            faults.append(line[:match.start()] + other + line[match.end():])
    for match in NUMBER.finditer(code):
        faults.append(line[:match.start()] + str(int(match.group()) + 1) + line[match.end():])
    if STATEMENT.match(code) and code.count("(") == code.count(")"):
        faults.append(";")
    return faults


def succeeds(*command, **options):
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              **options).returncode == 0
    except subprocess.TimeoutExpired:
        return False


class Copy:
    """One copy of the sources with its build."""

    def __init__(self, root, folder):
        self.source, self.build = folder / "source", folder / "build"
        if self.source.exists():
            shutil.rmtree(self.source)
        self.source.mkdir(parents=True)
        archive = subprocess.run(["git", "-C", root, "archive", "HEAD"], check=True,
                                 stdout=subprocess.PIPE).stdout
        subprocess.run(["tar", "-x", "-C", self.source, "-m"], input=archive, check=True)
        configured = succeeds("cmake", "-S", self.source, "-B", self.build, "-G", "Ninja",
                              "-DCMAKE_BUILD_TYPE=",
                              "-DCMAKE_CXX_FLAGS=-O1 -w -D_GLIBCXX_ASSERTIONS")
        if not configured or not self.compile():
            sys.exit("The sources do not build.")

    def compile(self):
        return succeeds("cmake", "--build", self.build, "-j1", "--target", *SUITES)

    def noticed(self):
        return not all(succeeds(self.build / suite, "--gtest_fail_fast", "--gtest_brief=1",
                                cwd=self.build, timeout=TIMEOUT_S) for suite in SUITES)

    def judge(self, file, number, text):
        """None: does not compile; else whether a test notices it."""
        path = self.source / file
        original = path.read_text()
        lines = original.split("\n")
        lines[number] = text
        path.write_text("\n".join(lines))
        try:
            return self.noticed() if self.compile() else None
        finally:
            path.write_text(original)


def key_of(file, lines, number, text):
    """How equivalent.txt names a fault: with its function, since a line may occur in several."""
    heads = (re.search(r"(\w+)\(", line) for line in reversed(lines[:number]) if line[:1].isalpha())
    head = next(filter(None, heads), None)
    return f"{file} {head.group(1) if head else '-'}: {lines[number].strip()} => {text.strip()}"


def all_faults(root, folders):
    faults = []
    for folder in folders:
        for path in sorted((root / "src" / folder).rglob("*.[ch]pp")):
            if "windows" in path.parts:
                continue  # is not part of the native build
            file, lines = str(path.relative_to(root)), path.read_text().split("\n")
            for number, line in enumerate(lines):
                for text in faults_of(line):
                    key = key_of(file, lines, number, text)
                    faults.append((file, number, line.strip(), text, key))
    return faults


def main():
    root, work = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    count, seed, folders = int(sys.argv[3]), int(sys.argv[4]), sys.argv[5:]
    equivalent = {line.split(" # ")[0] for line in
                  (root / "tests/mutants/equivalent.txt").read_text().splitlines()}
    copies = [Copy(root, work / str(i)) for i in range(2)]
    for copy in copies:
        if copy.noticed():
            sys.exit("The tests fail without a fault.")
    faults = all_faults(copies[0].source, folders)
    random.Random(seed).shuffle(faults)
    judged, survivors, rest = 0, 0, iter(faults)

    def judge(copy):
        nonlocal judged, survivors
        for file, number, line, text, key in rest:
            if judged >= count:
                return
            noticed = None if key in equivalent else copy.judge(file, number, text)
            if noticed is None:
                continue
            judged += 1
            if not noticed:
                survivors += 1
                print(f"{file}:{number + 1}\n  - {line}\n  + {text.strip()}", flush=True)

    with concurrent.futures.ThreadPoolExecutor() as pool:
        for result in [pool.submit(judge, copy) for copy in copies]:
            result.result()
    print(f"{judged - survivors} of {judged} faults noticed "
          f"({100 * (judged - survivors) // max(judged, 1)} %), seed {seed}")


main()
