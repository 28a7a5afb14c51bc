"""Builds the wheel. What pyproject.toml cannot say: the version, and for what machines the wheel is."""

from pathlib import Path
import re

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

HERE = Path(__file__).resolve().parent
LIBRARY = HERE / "specialeffects" / "libsfx.so.1"


def version() -> str:
    """The version stands in the library's header, and in a copy of it beside the files of a wheel."""
    copy = HERE / "sfx.h"
    header = (copy if copy.exists() else HERE.parents[1] / "sfx" / "sfx.h").read_text(encoding="utf-8")
    return ".".join(re.findall(r"^#define SFX_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)$", header, re.MULTILINE))


class OurDistribution(Distribution):
    """With the library inside, the wheel is for this kind of machine."""

    def has_ext_modules(self) -> bool:
        return LIBRARY.exists()


class Wheel(bdist_wheel):
    """Nothing in it depends on the version of Python."""

    def get_tag(self) -> tuple:
        return "py3", "none", super().get_tag()[2]


setup(version=version(), distclass=OurDistribution, cmdclass={"bdist_wheel": Wheel})
