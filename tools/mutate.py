#!/usr/bin/env python3
"""Changes the sources at random, one place at a time, and lists the changes that no test notices.

    tools/mutate.py [--count N] [--seed S] [--scratch FOLDER] [FILE...]

A change is an operator, a comparison, a constant or a truth value of a source file: of those named, or of the module
and libsfx. It is made in a copy of the tree, in FOLDER (build/mutate), where the tests of the file's folder or the
golden frames have to notice it. A change that does not compile is replaced by another one.

Survivors do not make the run fail: some changes cannot be noticed, since both forms mean the same.
"""

from __future__ import annotations

import argparse
import random
import re
import shutil
import subprocess
import sys
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent

# Binary operators stand between blanks, unlike the brackets of templates, pointers and references.
OPERATORS = {
    "+": "-", "-": "+", "*": "+", "/": "*", "%": "/", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "|",
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
    "+=": "-=", "-=": "+=",
}
OPERATOR = re.compile(r"(?<= )(" + "|".join(re.escape(o) for o in sorted(OPERATORS, key=len, reverse=True)) + r")(?= )")
NUMBER = re.compile(r"(?<![\w.])\d+(?![\w.])")
TRUTH = re.compile(r"\b(?:true|false)\b")
# Not code that runs: comments, texts, directives, declarations of what the compiler checks.
IGNORED = re.compile(r"//.*|/\*.*?\*/|\"(?:\\.|[^\"\\])*\"|'(?:\\.|[^'\\])*'")
SKIPPED_LINE = re.compile(r"\s*(#|\*|static_assert|template|using |return Tell|throw |.*\boperator\b)")

# The test programs of a folder; the golden frames come last.
PROGRAMS = {
    "framework": ["framework_tests"],
    "imaging": ["imaging_tests", "check_kernels/check_kernels"],
    "effects/tone": ["tone_tests"],
    "effects/distortion": ["distortion_tests"],
    "effects/drawing": ["drawing_tests"],
    "effects/time": ["time_tests"],
    "effects/animated": ["animated_tests"],
    "facetrack": ["facetrack_tests"],
    "sfx": ["sfx/sfx_tests"],
}
GOLDEN = "golden_tests"
SECONDS_PER_PROGRAM = 600


@dataclass(frozen=True)
class Change:
    """One place of a file, and its replacement."""

    file: Path  # below the root
    line: int  # from 1
    start: int
    old: str
    new: str

    def __str__(self) -> str:
        return f"{self.file}:{self.line}: {self.old} -> {self.new}"

    def apply(self, text: str) -> str:
        lines = text.splitlines(keepends=True)
        line, end = lines[self.line - 1], self.start + len(self.old)
        lines[self.line - 1] = line[:self.start] + self.new + line[end:]
        return "".join(lines)


def changes(file: Path, text: str) -> Iterator[Change]:
    """All changes of a file."""
    for number, line in enumerate(text.splitlines(), 1):
        if SKIPPED_LINE.match(line):
            continue
        code = IGNORED.sub(lambda match: "_" * len(match[0]), line)
        for match in OPERATOR.finditer(code):
            yield Change(file, number, match.start(), match[0], OPERATORS[match[0]])
        for match in NUMBER.finditer(code):
            yield Change(file, number, match.start(), match[0], str(int(match[0]) + 1))
        for match in TRUTH.finditer(code):
            yield Change(file, number, match.start(), match[0], "false" if match[0] == "true" else "true")


def sources(names: list[str]) -> list[Path]:
    """The files to change, below the root."""
    if names:
        return [Path(name).resolve().relative_to(ROOT) for name in names]
    found = [path.relative_to(ROOT) for folder in PROGRAMS for path in sorted((ROOT / folder).glob("*.cpp"))]
    return [path for path in found if path.name != "GlyphTable.cpp"]  # which is a picture


def programs(file: Path) -> list[str]:
    """The test programs that a change of the file has to fail."""
    return [*PROGRAMS[file.parent.as_posix()], GOLDEN]


class Copy:
    """A copy of the tree, built and tested with one change at a time."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        listing = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, stdout=subprocess.PIPE, text=True)
        for name in listing.stdout.rstrip("\0").split("\0"):
            target = folder / name
            # What is the same already is not built again.
            if not target.is_file() or target.read_bytes() != (ROOT / name).read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / name, target)
        self.run(["cmake", "--preset", "release", "-DSE_BUILD_TESTS=ON", "-DSE_BUILD_HOST=OFF"], check=True)

    def run(self, command: list[str], check: bool = False) -> bool:
        """Whether a command succeeds in the copy within the time limit."""
        try:
            return (
                subprocess.run(
                    command,
                    cwd=self.folder,
                    check=check,
                    stdout=subprocess.DEVNULL,
                    stderr=subprocess.DEVNULL,
                    timeout=None if check else SECONDS_PER_PROGRAM,
                ).returncode
                == 0
            )
        except subprocess.TimeoutExpired:
            return False

    def builds(self, names: list[str]) -> bool:
        targets = [name.split("/")[-1] for name in names]
        return self.run(["cmake", "--build", "--preset", "release", "--target", *targets])

    def passes(self, names: list[str]) -> bool:
        return all(self.run([f"build/release/tests/{name}", *arguments(name)]) for name in names)


def arguments(name: str) -> list[str]:
    if name.endswith("check_kernels"):
        return []
    return ["--gtest_fail_fast", "--gtest_brief=1"] + (["--gtest_filter=*OnRecord*"] if name == GOLDEN else [])


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=20, help="changes to try (%(default)s)")
    parser.add_argument("--seed", type=int, default=1, help="of the choice (%(default)s)")
    parser.add_argument("--scratch", type=Path, default=ROOT / "build" / "mutate", help="folder of the copy")
    parser.add_argument("files", nargs="*", metavar="FILE")
    options = parser.parse_args()

    everything = [change for file in sources(options.files) for change in changes(file, (ROOT / file).read_text())]
    random.Random(options.seed).shuffle(everything)
    copy = Copy(options.scratch.resolve())
    for names in {tuple(programs(change.file)) for change in everything}:
        if not copy.builds(list(names)) or not copy.passes(list(names)):
            print(f"the tests fail without any change: {', '.join(names)}", file=sys.stderr)
            return 1

    tried, survivors = 0, []
    for change in everything:
        if tried == options.count:
            break
        path = copy.folder / change.file
        text = path.read_text()
        path.write_text(change.apply(text))
        try:
            if not copy.builds(programs(change.file)):
                continue
            tried += 1
            noticed = not copy.passes(programs(change.file))
        finally:
            path.write_text(text)
        print(f"{'noticed ' if noticed else 'SURVIVED'} {change}", flush=True)
        if not noticed:
            survivors.append(change)
    print(f"{tried - len(survivors)} of {tried} changes noticed")
    for change in survivors:
        print(f"  {change}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
