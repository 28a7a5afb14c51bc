"""The wheel installs without the network, brings the library, and runs on its own."""

import subprocess
import sys
import zipfile

import pytest

import specialeffects
from conftest import BUILD


@pytest.fixture(scope="module")
def wheel():
    wheels = list((BUILD / "wheel").glob("*.whl"))
    assert len(wheels) == 1
    return wheels[0]


def test_holds_the_module_the_library_and_the_licences(wheel):
    names = zipfile.ZipFile(wheel).namelist()
    folder = f"specialeffects-{specialeffects.__version__}.dist-info/"
    for name in ("__init__.py", "_effects.py", "py.typed", "__init__.pyi", "libsfx.so.1", "GlyphTable.license.txt"):
        assert f"specialeffects/{name}" in names
    assert {folder + "LICENSE", folder + "NOTICE"} <= set(names)
    assert not [name for name in names if "__pycache__" in name]


def test_runs_where_the_library_is_not_installed(wheel, tmp_path):
    pip = [sys.executable, "-m", "pip", "install", "--quiet", "--no-index", "--no-deps", "--no-compile",
           "--root-user-action", "ignore", "--target", tmp_path, wheel]
    subprocess.run(pip, check=True)
    script = ("import numpy, specialeffects\n"
              "from importlib.metadata import version\n"
              "frame = numpy.zeros((48, 64, 3), numpy.uint8)\n"
              "specialeffects.Effect('sepia')(frame)\n"
              "print(specialeffects.__file__, version('specialeffects'), frame.max())\n")
    done = subprocess.run([sys.executable, "-c", script], cwd=tmp_path, check=True, capture_output=True, text=True,
                          env={"PYTHONPATH": str(tmp_path), "HOME": str(tmp_path)})
    file, version, brightest = done.stdout.split()
    assert file.startswith(str(tmp_path)) and version == specialeffects.__version__ and int(brightest) > 0
