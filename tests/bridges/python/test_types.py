"""The module's types hold, and its stubs are those of its list."""

import subprocess
import sys

from conftest import BUILD, MODULE

SOURCE = """
import numpy
from specialeffects import Chain, Effect

frame = numpy.zeros((4, 4, 3), numpy.uint8)
rain = Effect("rain", drop_size=9, seed=1)
rain.drop_size = 5
reveal_type(rain.drop_size)
reveal_type(rain(frame))
reveal_type(Effect("camera-flashes-1").mode)
reveal_type(Chain(["sepia", rain])[1].info.title)
rain.drop_sise = 5
Effect("rain", drop_sise=5).drop_size
rain.drop_size = 5.5
rain(frame, format="bgr25")
rain(5)
"""
REVEALED = ["builtins.int", "numpy.ndarray[Any, numpy.dtype[numpy.unsignedinteger[numpy._typing._8Bit]]]",
            "Literal['glows']", "builtins.str"]
WRONG_LINES = [12, 13, 14, 15, 16]


def mypy(*arguments):
    command = ["/usr/bin/mypy", "--strict", f"--cache-dir={BUILD}/mypy-cache", *arguments]
    return subprocess.run(command, cwd=MODULE, capture_output=True, text=True, timeout=300)


def test_stubs_are_up_to_date():
    made = subprocess.run([sys.executable, MODULE / "make_stubs.py"], check=True, capture_output=True, text=True).stdout
    assert made == (MODULE / "specialeffects" / "__init__.pyi").read_text(encoding="utf-8")


def test_the_module_and_its_stubs_hold(tmp_path):
    done = mypy("specialeffects")
    assert done.returncode == 0, done.stdout
    # The parts are private; effects get their properties as parameters, and links as attributes, at run time.
    allowed = ["specialeffects\\._.*", "specialeffects.Effect.__new__", "specialeffects.Link.__[gs]etattr__"]
    (tmp_path / "allowed").write_text("\n".join(allowed))
    command = [sys.executable, "-m", "mypy.stubtest", "--ignore-missing-stub", "--ignore-unused-allowlist",
               "--allowlist", tmp_path / "allowed", "specialeffects"]
    done = subprocess.run(command, cwd=MODULE, capture_output=True, text=True, timeout=300)
    assert done.returncode == 0, done.stdout[-2000:]


def test_a_type_checker_knows_effects_and_properties(tmp_path):
    (tmp_path / "user.py").write_text(SOURCE)
    lines = mypy(str(tmp_path / "user.py")).stdout.splitlines()
    notes = [line for line in lines if "Revealed type" in line]
    assert len(notes) == len(REVEALED) and all(text in line for text, line in zip(REVEALED, notes)), lines
    errors = sorted({int(line.split(":")[1]) for line in lines if ": error:" in line})
    assert errors == WRONG_LINES, lines
