#!/usr/bin/env python3
"""Changes the sources at random, one place at a time, and lists the changes that no test notices.

    tools/mutate.py [--count N] [--seed S] [--jobs N] [--scratch FOLDER] [FILE...]

A change is an operator, a comparison, a constant or a truth value in a line of code: of the files named, or of the
module and libsfx with their headers. All lines that have such a place are equally likely; the seed decides.

The changes are made in a copy of the tree, in FOLDER (build/mutate), which is built once with all of them: each is a
choice at run time, `(mutation::On(17) ? (a - b) : (a + b))`, made by the variable MUTATION in the environment. A run of
every test without any change measures the test and records the changes that it reaches. A change then has to make one
of the tests fail that reach it, the quick ones first. What no test reaches at run time (constant expressions, untested
lines) and what does not compile as a choice gets a build of its own, and all tests. A change that does not compile, or
gives the same programs, byte for byte, is replaced by another one.

Loops are compiled for the baseline only, as all processor levels of a loop have one source.

Survivors do not make the run fail: some changes cannot be noticed, since both forms mean the same.
"""

from __future__ import annotations

import argparse
import hashlib
import itertools
import math
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
from collections.abc import Iterable, Iterator
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDERS = ["framework", "imaging", "effects", "facetrack", "sfx"]

# A picture, and what is for other systems.
SKIPPED_FILE = re.compile(r"GlyphTable\.cpp$|Windows\.(cpp|h)$|WidePath\.h$")

# What replaces an operator, and how tightly the operator binds.
OPERATORS = {
    "*": ("+", 9), "/": ("*", 9), "%": ("/", 9), "+": ("-", 8), "-": ("+", 8), "<<": (">>", 7), ">>": ("<<", 7),
    "<": ("<=", 6), "<=": ("<", 6), ">": (">=", 6), ">=": (">", 6), "==": ("!=", 5), "!=": ("==", 5),
    "&": ("|", 4), "^": ("|", 3), "|": ("&", 2), "&&": ("||", 1), "||": ("&&", 0), "+=": ("-=", -1), "-=": ("+=", -1),
}
# Binary operators stand between blanks, unlike the brackets of templates, pointers and references.
OPERATOR = re.compile(r"(?<=\s)(?:" + "|".join(map(re.escape, sorted(OPERATORS, key=len, reverse=True))) + r")(?=\s)")
NUMBER = re.compile(r"(?<![\w.'])(?:0x[\da-f]+|\d+(?:\.\d*)?(?:e-?\d+)?)[ulf]*(?![\w.'])", re.IGNORECASE)
TRUTH = re.compile(r"\b(?:true|false)\b")
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
TEXT = re.compile(r"\"(?:\\.|[^\"\\\n])*\"|(?<![\da-f])'(?:\\.|[^'\\\n])+'")
DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.MULTILINE)
# What the compiler checks, and 0 that is no number.
SKIPPED_LINE = re.compile(r"\s*(static_assert|template|requires|using )|.*(\boperator\b|\) (const )?= 0[,;)])")
TOKEN = re.compile(r"\w+|::|->|(?<=\s)(?:<<|>>)(?=\s)|<<=|>>=|[-+*/%&|^<>=!]=|&&|\|\||\+\+|--|\S")
# What no operand reaches across, on its way to the left and to the right.
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}
BEFORE_OPERAND = ASSIGNMENTS | {",", ";", "?", ":", "return", "case", "else", "throw"}
BEHIND_OPERAND = ASSIGNMENTS | {",", ";", "?", ":"}

HEADER = """\
#pragma once
namespace mutation {
extern int current;
extern int* reached;
/// Whether the change is made. Constant expressions stay as they are.
[[gnu::always_inline]] constexpr inline bool On(int change) {
    if (__builtin_is_constant_evaluated()) return false;
    reached[change] = 1;
    return current == change;
}
}
"""
SOURCE = """\
#include <fcntl.h>
#include <sys/mman.h>
#include <cstdlib>
namespace mutation {
constexpr int kMost = 1 << 16;
int unread[kMost];
int current = 0;
int* reached = unread;
/// Before any other initialisation.
[[gnu::constructor(101)]] static void Start() {
    if (const char* change = std::getenv("MUTATION")) current = std::atoi(change);
    if (const char* path = std::getenv("MUTATIONS_REACHED"))
        reached = static_cast<int*>(
            mmap(nullptr, sizeof unread, PROT_READ | PROT_WRITE, MAP_SHARED, open(path, O_RDWR), 0));
}
}
"""
MOST = 1 << 16

# The test programs, below build/release; those without GoogleTest with the names of their groups.
PROGRAMS = [
    *(f"tests/{name}_tests" for name in ["framework", "imaging", "tone", "distortion", "drawing", "time", "animated"]),
    "tests/facetrack_tests", "tests/sfx/sfx_tests", "tests/memory_tests", "tests/golden_tests",
]
GROUPS = {
    ("tests/check_kernels/check_kernels", "--group"): ["points", "color", "geometry", "neighbourhood", "detection"],
    ("tests/abi/abi_host", "libspecialeffects.so"): [
        "module", "factory", "catalogue", "contract", "text", "properties", "settings", "tone", "sizes", "threads",
    ],
}
SLOW = re.compile("EveryAllocationMayFail")
SLOWEST = 600.0  # seconds of a test


def blanked(pattern: re.Pattern[str], text: str) -> str:
    """The text with blanks for what the pattern matches; lines stay where they are."""
    return pattern.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)


@dataclass(frozen=True)
class Change:
    """One place of a file, and its replacement."""

    file: Path  # below the root
    line: int  # from 1
    start: int  # in the file
    old: str
    new: str

    def __str__(self) -> str:
        return f"{self.file}:{self.line}: {self.old} -> {self.new}"


@dataclass(frozen=True)
class Token:
    text: str
    start: int
    end: int
    depth: int  # 1 for an opening bracket, -1 for a closing one
    binding: int | None  # of a binary operator


def tokens(text: str) -> Iterator[Token]:
    for match in TOKEN.finditer(text):
        word, start, end = match[0], match.start(), match.end()
        spaced = text[start - 1].isspace() and text[end:end + 1].isspace()
        depth = 0
        if word in "([{" or (word == "<" and not spaced):
            depth = 1
        elif word in ")]}" or (word == ">" and not spaced):
            depth = -1
        yield Token(word, start, end, depth, OPERATORS[word][1] if spaced and word in OPERATORS else None)


class Code:
    """A source file without its comments, whose places can be changed."""

    def __init__(self, file: Path) -> None:
        self.file = file
        self.text = blanked(COMMENT, (ROOT / file).read_text())
        self.bare = blanked(DIRECTIVE, blanked(TEXT, self.text))
        self.tokens = list(tokens(self.bare))
        self.token_at = {token.start: index for index, token in enumerate(self.tokens)}

    def changes(self) -> list[list[Change]]:
        """The changes of each line that has any."""
        lines, start = [], 0
        for number, line in enumerate(self.bare.splitlines(keepends=True), 1):
            if not SKIPPED_LINE.match(line):
                places = [(match, OPERATORS[match[0]][0]) for match in OPERATOR.finditer(line)]
                places += [(match, f"({match[0]} + 1)") for match in NUMBER.finditer(line)]
                places += [(match, "true" if match[0] == "false" else "false") for match in TRUTH.finditer(line)]
                lines.append([Change(self.file, number, start + m.start(), m[0], new) for m, new in places])
            start += len(line)
        return [line for line in lines if line]

    def extent(self, change: Change) -> tuple[int, int]:
        """Where the expression is that a change affects: an operator with its operands, a number, a truth value."""
        if change.old not in OPERATORS:
            return change.start, change.start + len(change.old)
        index = self.token_at[change.start]
        return self.tokens[self._first(index)].start, self.tokens[self._last(index)].end

    def _first(self, index: int) -> int:
        """The first token of an operator's left operand."""
        binding, depth, first = OPERATORS[self.tokens[index].text][1], 0, index
        while True:
            token, following = self.tokens[first - 1], self.tokens[first]
            if depth == 0 and (
                token.depth > 0
                or token.text in BEFORE_OPERAND
                or (token.binding is not None and token.binding < binding)
                # What stands before a statement: `if (a) b += c`.
                or (token.text in ")}" and re.match(r"\w", following.text))
            ):
                return first
            depth -= token.depth
            first -= 1

    def _last(self, index: int) -> int:
        """The last token of an operator's right operand."""
        binding, depth, last = OPERATORS[self.tokens[index].text][1], 0, index
        while True:
            token = self.tokens[last + 1]
            if depth == 0 and (
                token.depth < 0
                or (token.text in BEHIND_OPERAND and (binding >= 0 or token.text in ",;"))
                or (token.binding is not None and token.binding <= binding)
            ):
                return last
            depth += token.depth
            last += 1

    def changed(self, change: Change) -> str:
        """The expression with the change, in one line."""
        start, end = self.extent(change)
        behind = change.start + len(change.old)
        return (self.text[start:change.start] + change.new + self.text[behind:end]).replace("\n", " ")

    def with_choices(self, numbers: dict[Change, int], made: Change | None = None) -> str:
        """The text with changes that are chosen by their numbers, and one that is made."""
        text = self.text
        for change in sorted({*numbers, *([made] if made else [])}, key=lambda change: -change.start):
            start, end = self.extent(change)
            expression = f"({self.changed(change)})"
            if change != made:
                expression = f"(mutation::On({numbers[change]}) ? {expression} : ({text[start:end]}))"
            text = text[:start] + expression + text[end:]
        return text


def sources(names: list[str]) -> list[Path]:
    """The files to change, below the root."""
    if names:
        return [Path(name).resolve().relative_to(ROOT) for name in names]
    found = [path for folder in FOLDERS for kind in ("h", "cpp") for path in (ROOT / folder).rglob(f"*.{kind}")]
    return sorted(path.relative_to(ROOT) for path in found if not SKIPPED_FILE.search(path.name))


def chosen(codes: Iterable[Code], seed: int) -> list[Change]:
    """One change of each line, in random order."""
    chance = random.Random(seed)
    changes = [chance.choice(line) for code in codes for line in code.changes()]
    chance.shuffle(changes)
    return changes


@dataclass
class Test:
    """A test of a program, or one of its groups of tests."""

    program: str
    name: str
    arguments: list[str]
    seconds: float = 0.0
    reached: set[int] = field(default_factory=set)  # numbers of changes


def limit_resources(seconds: float) -> None:
    """What a changed program may not exceed, and the time of the processor."""
    resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    whole = math.ceil(seconds)
    resource.setrlimit(resource.RLIMIT_CPU, (whole, whole + 1))


def processor_seconds() -> float:
    """That all processes so far have taken."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class Copy:
    """A copy of the tree, built with all changes to be chosen."""

    def __init__(self, folder: Path, codes: list[Code], changes: list[Change], jobs: int) -> None:
        self.folder = folder
        self.jobs = jobs
        self.build_folder = folder / "build" / "release"
        self.codes = {code.file: code for code in codes}
        self.numbers = {change: number for number, change in enumerate(changes, 1)}
        # Of two changes that overlap, the second gets a build of its own.
        self.switched: dict[Path, dict[Change, int]] = {code.file: {} for code in codes}
        for change, number in self.numbers.items():
            if not self.overlapping(change):
                self.switched[change.file][change] = number
        listing = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, stdout=subprocess.PIPE, text=True)
        for name in listing.stdout.rstrip("\0").split("\0"):
            if Path(name) not in self.codes:
                self.write(Path(name), (ROOT / name).read_bytes())
        self.write(Path("framework/mutation.h"), HEADER.encode())
        self.write(Path("framework/mutation.cpp"), SOURCE.encode())
        for file in self.codes:
            self.write_code(file)
        flags = f"-w -Wno-narrowing -include {folder}/framework/mutation.h"
        subprocess.run(
            ["cmake", "--preset", "release", "-DSE_BUILD_TESTS=ON", "-DSE_BUILD_HOST=OFF", "-DSE_WERROR=OFF",
             f"-DCMAKE_CXX_FLAGS={flags}", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG"],
            cwd=folder, check=True, stdout=subprocess.DEVNULL, env=self.environment(),
        )

    def environment(self, **more: str) -> dict[str, str]:
        # What is compiled here is of no use elsewhere.
        return {**os.environ, "CCACHE_DIR": f"{self.folder}/ccache", **more}

    def overlapping(self, change: Change) -> set[Change]:
        code = self.codes[change.file]
        start, end = code.extent(change)
        extents = {other: code.extent(other) for other in self.switched[change.file] if other != change}
        return {other for other, extent in extents.items() if start < extent[1] and extent[0] < end}

    def write(self, file: Path, content: bytes) -> None:
        """Writes a file, unless it is the same already: then it need not be compiled again."""
        target = self.folder / file
        if file == Path("imaging/PerLevel.h"):
            content = content.replace(b"SE_X86_LEVELS 1", b"SE_X86_LEVELS 0")
        if not target.is_file() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
            if (ROOT / file).is_file():
                shutil.copymode(ROOT / file, target)

    def write_code(self, file: Path, made: Change | None = None) -> None:
        numbers = self.switched[file]
        if made:
            numbers = {change: n for change, n in numbers.items() if change not in {made, *self.overlapping(made)}}
        self.write(file, self.codes[file].with_choices(numbers, made).encode())

    def build(self) -> tuple[bool, str]:
        targets = [Path(program).name for program in [*PROGRAMS, *(program for program, _ in GROUPS)]]
        done = subprocess.run(
            ["ninja", "-C", str(self.build_folder), "-k", "0", "-j", str(self.jobs), *targets],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace", env=self.environment(),
        )
        return done.returncode == 0, done.stdout

    def build_with_choices(self) -> bool:
        """Builds; what does not compile as a choice is none."""
        for _ in range(9):
            done, output = self.build()
            if done:
                return True
            lines = set(re.findall(rf"^{re.escape(str(self.folder))}/(\S+?):(\d+):", output, re.MULTILINE))
            bad = {
                change
                for numbers in self.switched.values()
                for change in numbers
                if any((str(change.file), str(line)) in lines for line in self.lines(change))
            }
            if not bad:
                print(output, file=sys.stderr)
                return False
            for change in bad:
                del self.switched[change.file][change]
            for file in {change.file for change in bad}:
                self.write_code(file)
        return False

    def lines(self, change: Change) -> range:
        code = self.codes[change.file]
        start, end = code.extent(change)
        return range(code.text.count("\n", 0, start) + 1, code.text.count("\n", 0, end) + 2)

    def digest(self) -> str:
        """Of all programs."""
        programs = [self.build_folder / program for program in [*PROGRAMS, *(program for program, _ in GROUPS)]]
        programs.append(self.build_folder / "libspecialeffects.so")
        return hashlib.sha256(b"".join(program.read_bytes() for program in programs)).hexdigest()

    def run(self, command: list[str], seconds: float, **variables: str) -> str:
        """How a test ends: "", "failed" or "timed out", which is for the processor's time."""
        work = self.folder / "work"
        work.mkdir(exist_ok=True)
        try:
            done = subprocess.run(
                command, cwd=work, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=60 + 20 * seconds,
                env=self.environment(**variables), preexec_fn=lambda: limit_resources(seconds),
            )
        except subprocess.TimeoutExpired:
            return "timed out"
        if done.returncode in (-signal.SIGXCPU, -signal.SIGKILL):
            return "timed out"
        return "" if done.returncode == 0 else "failed"

    def tests(self) -> Iterator[Test]:
        for program in PROGRAMS:
            listing = subprocess.run(
                [str(self.build_folder / program), "--gtest_list_tests"],
                cwd=self.folder, check=True, stdout=subprocess.PIPE, text=True, env=self.environment(),
            )
            suite = ""
            for line in listing.stdout.splitlines():
                name = line.split("#")[0].strip()
                if not line.startswith(" "):
                    suite = name if name.endswith(".") else ""
                elif suite and not SLOW.search(name):
                    yield Test(program, suite + name, [])
        for (program, argument), groups in GROUPS.items():
            first = str(self.build_folder / argument) if argument.startswith("lib") else argument
            for group in groups:
                yield Test(program, group, [first, group])

    def measure(self, test: Test) -> bool:
        """Runs a test without any change. Whether it passes."""
        record = self.folder / "reached"
        record.write_bytes(bytes(4 * MOST))
        before = processor_seconds()
        passed = self.run(self.command([test]), SLOWEST, MUTATIONS_REACHED=str(record)) == ""
        test.seconds = processor_seconds() - before
        flags = record.read_bytes()
        test.reached = {number for number in self.numbers.values() if any(flags[4 * number:4 * number + 4])}
        return passed

    def command(self, tests: list[Test]) -> list[str]:
        """What runs tests of one program."""
        path = str(self.build_folder / tests[0].program)
        if tests[0].arguments:
            return [path, *tests[0].arguments]
        return [path, "--gtest_fail_fast", "--gtest_brief=1", "--gtest_filter=" + ":".join(t.name for t in tests)]

    def noticed(self, tests: list[Test], number: int = 0) -> str:
        """Which of the tests notice the change that is chosen or built, or "". The quick ones come first."""
        for batch in batches(sorted(tests, key=lambda test: test.seconds)):
            seconds = 5 + 10 * sum(test.seconds for test in batch)
            if outcome := self.run(self.command(batch), seconds, MUTATION=str(number)):
                return f"{outcome}: {batch[0].program} {batch[0].name}" + (" and others" if batch[1:] else "")
        return ""


def batches(tests: list[Test]) -> Iterator[list[Test]]:
    """The tests for one process each: those of one program, and the more the longer it takes."""
    waiting: dict[str, list[Test]] = {}
    spent, limit = 0.0, 0.5
    for test in tests:
        spent += test.seconds
        if test.arguments:
            yield [test]
        else:
            waiting.setdefault(test.program, []).append(test)
        if spent > limit:
            yield from waiting.values()
            waiting, limit = {}, 2 * limit
    yield from waiting.values()


def try_choices(copy: Copy, tests: list[Test], changes: list[Change]) -> Iterator[tuple[Change, str]]:
    """The changes that tests reach by choice, and what notices each."""
    for change in changes:
        number = copy.numbers[change]
        if reaching := [test for test in tests if number in test.reached]:
            yield change, copy.noticed(reaching, number)


def try_builds(copy: Copy, tests: list[Test], changes: Iterable[Change]) -> Iterator[tuple[Change, str]]:
    """The changes that make a difference once compiled, and what notices each."""
    unchanged = copy.digest()
    for change in changes:
        copy.write_code(change.file, change)
        if copy.build()[0] and copy.digest() != unchanged:
            of_file = set(copy.switched[change.file].values())
            near = [test for test in tests if test.reached & of_file]
            far = [test for test in tests if not test.reached & of_file]
            yield change, copy.noticed(near) or copy.noticed(far)
        copy.write_code(change.file)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=20, help="changes to try (%(default)s)")
    parser.add_argument("--seed", type=int, default=1, help="of the choice (%(default)s)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="compilers at a time (%(default)s)")
    parser.add_argument("--scratch", type=Path, default=ROOT / "build" / "mutate", help="folder of the copy")
    parser.add_argument("files", nargs="*", metavar="FILE")
    options = parser.parse_args()

    codes = [Code(file) for file in sources(options.files)]
    changes = chosen(codes, options.seed)
    first = changes[:options.count]
    copy = Copy(options.scratch.resolve(), codes, first, options.jobs)
    if not copy.build_with_choices():
        return 1
    tests = list(copy.tests())
    for test in tests:
        if not copy.measure(test):
            print(f"fails without any change: {test.program} {test.name}", file=sys.stderr)
            return 1

    outcomes: dict[Change, str] = {}
    by_choice = try_choices(copy, tests, first)
    by_build = try_builds(copy, tests, (change for change in changes if change not in outcomes))
    for change, outcome in itertools.chain(by_choice, by_build):
        outcomes[change] = outcome
        print(f"{outcome or 'SURVIVED'}: {change}", flush=True)
        if len(outcomes) == options.count:
            break
    survivors = [change for change, outcome in outcomes.items() if not outcome]
    print(f"{len(outcomes) - len(survivors)} of {len(outcomes)} changes noticed")
    for change in survivors:
        print(f"  {change}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
