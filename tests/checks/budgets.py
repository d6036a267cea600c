#!/usr/bin/env python3
"""Holds lengths of files and functions against budgets, which are only ever lowered.

usage: budgets.py SOURCE_ROOT
"""

import pathlib
import re
import sys

TYPE = re.compile(r"(template\b.*)?(class|struct|union|enum)\b")
FILE_LINES = 800
FUNCTION_LINES = 100
NAMED_FILES = {"app/mainwindow/main_window.h": 350, "app/mainwindow/main_window.cpp": 700}
# Longer than the budgets for a reason that stands beside each.
TABLES = {}


def functions(lines):
    """Yields (first line number, length) of each body whose braces stand alone in column 0, as the layout has them."""
    start, head = None, ""
    for number, line in enumerate(lines, 1):
        if line == "{":
            start = None if TYPE.match(head) else number
        elif line in ("}", "};") and start:
            yield start, number - start + 1
            start = None
        if line and not line.startswith((" ", "{", "}", "/")):
            head = line


def main():
    root = pathlib.Path(sys.argv[1])
    files = [p for top in ("engine", "app", "tools") for p in sorted((root / top).rglob("*")) if p.suffix in (".h", ".cpp")]
    faults, lengths, seen = [], [], 0
    for path in files:
        name = path.relative_to(root).as_posix()
        lines = path.read_text().splitlines()
        budget = NAMED_FILES.get(name, TABLES.get(name, FILE_LINES))
        if len(lines) > budget:
            faults.append(f"{name}: {len(lines)} lines, budget {budget}")
        if path.suffix != ".cpp":
            continue
        for start, length in functions(lines):
            seen += 1
            lengths.append(length)
            if length > FUNCTION_LINES:
                faults.append(f"{name}:{start}: a function of {length} lines, budget {FUNCTION_LINES}")
    lengths.sort()
    if lengths:
        print(f"{len(files)} files, {seen} functions, 95th percentile {lengths[int(0.95 * len(lengths))]} lines")
    print("\n".join(faults))
    return 1 if faults or not lengths else 0


if __name__ == "__main__":
    sys.exit(main())
