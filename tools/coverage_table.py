#!/usr/bin/env python3
"""Prints a table of the lines that tests run, by folder, from traces in lcov's format.

    tools/coverage_table.py --folder FOLDER... UNCOVERED TRACE...

A line counts as covered when it ran in any of the traces, in any instance of a template, at any processor level. Lines
without code do not count: empty ones, comments and directives of C's preprocessor. Paths in a trace are relative to the
root of the tree, or lie below it. Each line that did not run goes to the file UNCOVERED with its text. The exit code is
1 when a folder is below its bar or in no trace.
"""

from __future__ import annotations

import argparse
import sys
from collections import defaultdict
from pathlib import Path, PurePosixPath

ROOT = Path(__file__).resolve().parent.parent

# The least percentage of lines. Clang 14 counts two lines wrongly: it loses the count after a loop with a pragma in
# imaging/PlaneRelief.cpp, and counts the end of a consteval constructor in effects/time/FourSquare.cpp.
BARS = {
    "framework": 95,
    "imaging": 95,
    "effects": 95,
    "facetrack": 95,
    "sfx": 95,
    "host": 85,
    "bridges/gstreamer": 85,
    "bridges/frei0r": 85,
    "bridges/obs": 85,
    "bridges/python": 85,
}

# What lines without code begin with.
MARKS = {".h": ("#", "//"), ".c": ("#", "//"), ".cpp": ("#", "//")}

# For each file and line, how often it ran.
Counts = defaultdict[PurePosixPath, defaultdict[int, int]]


def path_in_tree(name: str) -> PurePosixPath | None:
    """The path below the root, or None for a file that is not the tree's."""
    path = (ROOT / name).resolve()
    return PurePosixPath(path.relative_to(ROOT)) if path.is_relative_to(ROOT) else None


def folder_of(path: PurePosixPath) -> str | None:
    """The folder of the table that a file belongs to."""
    return next((folder for folder in BARS if path.is_relative_to(folder)), None)


def read_trace(trace: Path, counts: Counts) -> None:
    """Adds what a trace says about the files of the table."""
    lines = None
    for record in trace.read_text().splitlines():
        kind, _, value = record.partition(":")
        if kind == "SF":
            path = path_in_tree(value)
            lines = counts[path] if path is not None and folder_of(path) is not None else None
        elif kind == "DA" and lines is not None:
            line, count = value.split(",")[:2]
            lines[int(line)] += int(count)


def drop_lines_without_code(counts: Counts) -> None:
    """Removes the lines that hold no code but are counted with the code around them."""
    for path, lines in counts.items():
        marks = MARKS.get(path.suffix, ())
        text = [line.strip() for line in (ROOT / path).read_text().splitlines()]
        for line in [line for line in lines if not text[line - 1] or text[line - 1].startswith(marks)]:
            del lines[line]


def write_uncovered(counts: Counts, target: Path) -> None:
    """Writes path, number and text of each line that did not run."""
    with target.open("w") as out:
        for path in sorted(counts):
            text = (ROOT / path).read_text().splitlines()
            for line, count in sorted(counts[path].items()):
                if count == 0:
                    out.write(f"{path}:{line}: {text[line - 1].strip()}\n")


def print_table(counts: Counts, folders: list[str]) -> bool:
    """Prints a row for each of these folders. Whether none is below its bar."""
    print(f"{'folder':<18}{'lines':>7}{'covered':>9}{'percent':>9}{'at least':>10}")
    good = True
    for folder in folders:
        bar = BARS[folder]
        ran = [count > 0 for path in counts if folder_of(path) == folder for count in counts[path].values()]
        percent = 100 * sum(ran) / len(ran) if ran else 0
        good = good and percent >= bar
        print(f"{folder:<18}{len(ran):>7}{sum(ran):>9}{percent:>9.2f}{bar:>10}{'' if percent >= bar else '  BELOW'}")
    return good


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--folder", action="append", required=True, choices=BARS, help="of the table")
    parser.add_argument("uncovered", type=Path, metavar="UNCOVERED")
    parser.add_argument("traces", type=Path, nargs="+", metavar="TRACE")
    options = parser.parse_args()

    counts: Counts = defaultdict(lambda: defaultdict(int))
    for trace in options.traces:
        read_trace(trace, counts)
    drop_lines_without_code(counts)
    write_uncovered(counts, options.uncovered)
    return 0 if print_table(counts, options.folder) else 1


if __name__ == "__main__":
    sys.exit(main())
