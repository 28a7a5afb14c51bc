#!/usr/bin/python3
"""commands.py notices what is wrong in documents and in its lists."""

import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
RULES = '''
OTHER_LANGUAGES = ["", "c"]
AT_HAND = {"README.md": "echo ready > at-hand", "docs/more.md": "echo ready > at-hand"}
RUN = [r"^echo ", r"^export ", r"^cat "]
NOT_RUN = {"not here": [r"/dev/camera"]}
STAND_INS = {r"screen": "file"}
QUIET = [r"^cat "]
MADE = {"README.md": ["grep -q twice file"]}
'''
PAGE = '''
# Title
## First
Say `make it`.
```sh
export WORD=twice   # holds for the commands after it
echo once \\
    $WORD > screen
```
```c
#include <nothing.h>
```
## Second
- In a list:

  ```sh
  cat at-hand file
  echo /dev/camera
  ```
'''


class Commands(unittest.TestCase):
    def setUp(self) -> None:
        self.root = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.root)
        shutil.copytree(HERE, self.root / "tests/docs", ignore=shutil.ignore_patterns("__pycache__", "rules.py"))
        (self.root / "docs").mkdir()
        (self.root / "build/release").mkdir(parents=True)
        self.write("Makefile", "it:\n")
        self.write("tests/docs/rules.py", RULES)
        self.write("README.md", PAGE)

    def write(self, name: str, text: str) -> None:
        (self.root / name).write_text(text)

    def commands(self, *arguments: str) -> tuple[int, str]:
        done = subprocess.run([sys.executable, "tests/docs/commands.py", *arguments], cwd=self.root, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return done.returncode, done.stdout

    def expect_wrong(self, arguments: list[str], text: str) -> None:
        status, output = self.commands(*arguments)
        self.assertNotEqual(status, 0)
        self.assertIn(text, output)

    def run_all(self) -> list[str]:
        return ["run", "build/release", "build/scratch"]

    def test_lists(self) -> None:
        first = "export WORD=twice\necho once $WORD > screen\n"
        self.assertEqual(self.commands("list", "README.md", "First"), (0, first))
        self.assertEqual(self.commands("list", "README.md"), (0, first + "cat at-hand file\necho /dev/camera\n"))
        self.expect_wrong(["list", "README.md", "Third"], "no commands")

    def test_accepts_and_runs_what_is_right(self) -> None:
        self.assertEqual(self.commands("check"), (0, ""))
        status, output = self.commands(*self.run_all())
        self.assertEqual(status, 0, output)
        self.assertIn("Not run, not here:\n    README.md:18: echo /dev/camera\n", output)
        self.assertIn("README.md:8: echo once $WORD > screen\n", output)

    def test_notices_a_command_in_no_list(self) -> None:
        self.write("docs/more.md", "```sh\ntrue\n```\n")
        self.expect_wrong(["check"], "docs/more.md:2: in no list of tests/docs/rules.py: true")
        self.expect_wrong(self.run_all(), "docs/more.md:2: in no list of tests/docs/rules.py: true")

    def test_notices_a_rule_without_a_command(self) -> None:
        self.write("README.md", PAGE.replace("/dev/camera", "nothing"))
        self.expect_wrong(["check"], "no document has a command like '/dev/camera'")

    def test_notices_an_unknown_language(self) -> None:
        self.write("docs/more.md", "```fortran\n```\n")
        self.expect_wrong(["check"], "docs/more.md:1: rules.py does not know the language 'fortran'")

    def test_notices_an_unknown_target(self) -> None:
        self.write("README.md", PAGE.replace("make it", "make what"))
        self.expect_wrong(["check"], "the documents name 'make what'")

    def test_notices_a_command_that_fails(self) -> None:
        self.write("docs/more.md", "```sh\necho once | grep twice\n```\n")
        self.expect_wrong(self.run_all(), "commands fail in docs/more.md")
        self.write("docs/more.md", "```sh\necho once | grep twice | wc\n```\n")
        self.expect_wrong(self.run_all(), "commands fail in docs/more.md")

    def test_notices_a_complaint(self) -> None:
        self.write("docs/more.md", "```sh\ncat at-hand >&2\n```\n")
        self.expect_wrong(self.run_all(), "commands fail in docs/more.md")

    def test_notices_what_was_not_made(self) -> None:
        self.write("README.md", PAGE.replace("twice", "thrice"))
        self.expect_wrong(self.run_all(), "commands fail in README.md")


if __name__ == "__main__":
    unittest.main()
