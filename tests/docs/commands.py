#!/usr/bin/python3
"""The commands of the documents: the lines of their blocks of shell.

    commands.py list PAGE [HEADING]             those of a page, or of one of its sections; with --shell bat, Windows'
    commands.py check                           each is in a list of rules.py, and each `make TARGET` names a target
    commands.py run BUILD SCRATCH [PAGE...]     the same, and runs those that RUN lists, in SCRATCH

Lines that end in a backslash are joined; comments are cut off.
"""

import argparse
import re
import shutil
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path
from shlex import quote

import rules

ROOT = Path(__file__).resolve().parents[2]


@dataclass(frozen=True)
class Command:
    place: str
    heading: str
    text: str


def pages() -> list[str]:
    documents = (str(page.relative_to(ROOT)) for page in sorted((ROOT / "docs").rglob("*.md")))
    return [*(page for page in ("README.md", "CONTRIBUTING.md") if (ROOT / page).exists()), *documents]


def commands_of(page: str, shell: str = "sh") -> list[Command]:
    found: list[Command] = []
    language, heading, joined = None, "", ""
    for number, line in enumerate((ROOT / page).read_text().splitlines(), 1):
        if fence := re.match(r" *```(\w*)$", line):
            language = fence[1] if language is None else None
            if language not in (None, "sh", *rules.OTHER_LANGUAGES):
                sys.exit(f"{page}:{number}: rules.py does not know the language '{language}'")
        elif language is None and line.startswith("#"):
            heading = line.lstrip("# ")
        elif language == shell:
            joined += re.sub(r"(^|  )\s*#.*", "", line.strip())
            if joined.endswith("\\"):
                joined = joined[:-1]
            elif joined:
                found.append(Command(f"{page}:{number}", heading, joined.strip()))
                joined = ""
    return found


def is_any(patterns: list[str], text: str) -> bool:
    return any(re.search(pattern, text) for pattern in patterns)


NOT_RUN = [pattern for patterns in rules.NOT_RUN.values() for pattern in patterns]


def check(commands: list[Command]) -> list[str]:
    """What is wrong with the lists, and with the targets that the documents name."""
    wrong = [f"{command.place}: in no list of tests/docs/rules.py: {command.text}" for command in commands
             if not is_any([*rules.RUN, *NOT_RUN], command.text)]
    wrong += [f"tests/docs/rules.py: no document has a command like '{pattern}'"
              for pattern in [*rules.RUN, *NOT_RUN, *rules.STAND_INS]
              if not any(re.search(pattern, command.text) for command in commands)]
    code = [command.text for command in commands]
    for page in pages():
        code += re.findall(r"`([^`\n]+)`", (ROOT / page).read_text())
    name = re.compile(r"\bmake ([a-z][a-z0-9-]*)(?![A-Za-z0-9-])")  # but not `make long-NAME`
    for target in sorted({target for text in code for target in name.findall(text)}):
        dry = subprocess.run(["make", "--dry-run", target], cwd=ROOT, capture_output=True, text=True)
        if dry.returncode != 0:
            wrong.append(f"the documents name 'make {target}': {dry.stderr.strip()}")
    return wrong


def run(page: str, build: Path, scratch: Path) -> bool:
    """Runs a page's commands in one shell, so that each finds what those before it have set and made."""
    folder = scratch / page.replace("/", "-").removesuffix(".md")
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "work").mkdir(parents=True)
    for entry in ROOT.iterdir():
        (folder / "work" / entry.name).symlink_to(build.parent if entry.name == "build" else entry)

    script = [f"tree={quote(str(ROOT))} release={quote(str(build))} scratch={quote(str(folder))}",
              f". {quote(str(ROOT / 'tests/docs/prelude.sh'))}", rules.AT_HAND.get(page, "")]
    steps = [(command.place, command.text) for command in commands_of(page) if not is_any(NOT_RUN, command.text)]
    for place, text in [*steps, *((f"made by {page}", text) for text in rules.MADE.get(page, []))]:
        shown = text
        for pattern, stand_in in rules.STAND_INS.items():
            text = re.sub(pattern, stand_in, text)
        quiet = "yes" if is_any(rules.QUIET, shown) else "no"
        script += [f"echo {quote(f'{place}: {shown}')}",
                   f"{{ {text}",
                   "} < /dev/null > \"$scratch/out\" 2> \"$scratch/err\"",
                   f"judge $? {quiet}"]
    script.append("exit $failed")
    done = subprocess.run(["bash", "-c", "\n".join(script)], cwd=folder / "work", check=False)
    if done.returncode == 0:
        shutil.rmtree(folder)
    return done.returncode == 0


def main() -> None:
    parser = argparse.ArgumentParser(description="The commands of the documents.")
    verbs = parser.add_subparsers(dest="verb", required=True)
    verb = verbs.add_parser("list")
    verb.add_argument("page")
    verb.add_argument("heading", nargs="?")
    verb.add_argument("--shell", default="sh")
    verbs.add_parser("check")
    verb = verbs.add_parser("run")
    verb.add_argument("build", type=Path)
    verb.add_argument("scratch", type=Path)
    verb.add_argument("page", nargs="*")
    arguments = parser.parse_args()

    if arguments.verb == "list":
        listed = [command.text for command in commands_of(arguments.page, arguments.shell)
                  if arguments.heading in (None, command.heading)]
        print(*listed, sep="\n")
        sys.exit(0 if listed else f"{arguments.page} has no commands under '{arguments.heading}'")
    commands = [command for page in pages() for command in commands_of(page)]
    if wrong := check(commands):
        sys.exit("\n".join(wrong))
    if arguments.verb == "check":
        return
    for why, patterns in rules.NOT_RUN.items():
        print(f"Not run, {why}:")
        print(*(f"    {command.place}: {command.text}" for command in commands if is_any(patterns, command.text)),
              sep="\n", flush=True)
    failed = [page for page in arguments.page or pages()
              if commands_of(page) and not run(page, arguments.build.resolve(), arguments.scratch.resolve())]
    sys.exit(f"commands fail in {', '.join(failed)}" if failed else 0)


if __name__ == "__main__":
    main()
