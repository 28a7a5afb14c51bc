"""Writes the type stubs, which name each effect with its properties: make_stubs.py > specialeffects/__init__.pyi."""

from __future__ import annotations

import specialeffects

HEAD = '''\
"""Types of the module. Written by make_stubs.py from the list of effects."""

import os
from collections.abc import Iterable, Iterator
from dataclasses import dataclass
from typing import Any, Literal, Sequence, TypeVar, overload

import numpy
import numpy.typing

__version__: str

_Plane = numpy.typing.NDArray[numpy.uint8]
_Frame = TypeVar("_Frame", bound=_Plane | Sequence[_Plane] | memoryview)
_Path = str | os.PathLike[str]
_Color = str | int | tuple[int, int, int]
_Format = Literal[{formats}]

class Error(Exception):
    status: int

class UnknownNameError(Error, LookupError): ...
class InvalidValueError(Error, ValueError): ...
class PictureError(Error, ValueError): ...
class FileError(Error, OSError): ...
class OutOfMemoryError(Error, MemoryError): ...
class ClampedWarning(UserWarning): ...
class DataMissingWarning(UserWarning): ...

@dataclass(frozen=True)
class ChoiceInfo:
    value: int
    id: str
    description: str

@dataclass(frozen=True)
class PropertyInfo:
    id: str
    attribute: str
    name: str
    description: str
    type: str
    minimum: int
    maximum: int
    start: int
    choices: tuple[ChoiceInfo, ...]

@dataclass(frozen=True)
class EffectInfo:
    id: str
    guid: str
    name: str
    title: str
    kind: str
    description: str
    variant: int | None
    has_memory: bool
    moves: bool
    uses_chance: bool
    uses_time: bool
    listed: bool
    data_file: str | None
    properties: tuple[PropertyInfo, ...]

@dataclass(frozen=True)
class PresetInfo:
    id: str
    title: str
    description: str
    effect: str
    is_user: bool

def effects() -> tuple[EffectInfo, ...]: ...
def find(name: str) -> EffectInfo: ...
def presets() -> tuple[PresetInfo, ...]: ...
def load_presets(path: _Path) -> None: ...

class Effect:
{constructors}
    @overload
    def __new__(cls, effect: str, /, *, seed: int | None = ..., data_folder: _Path | None = ..., **properties: Any) -> Effect: ...
    def __call__(
        self,
        frame: _Frame,
        *,
        format: _Format | None = ...,
        time: float | None = ...,
        matrix: Literal["bt601", "bt709", "bt2020"] = ...,
        full_range: bool = ...,
    ) -> _Frame: ...
    def prepare(self, width: int, height: int) -> None: ...
    def reset(self) -> None: ...
    def set_defaults(self) -> None: ...
    def load_settings(self, path: _Path) -> None: ...
    def set(self, name: str, value: int | str | tuple[int, int, int]) -> None: ...
    def get(self, name: str) -> str: ...
    @property
    def seed(self) -> int: ...
    @seed.setter
    def seed(self, seed: int) -> None: ...
    @property
    def data_folder(self) -> str | None: ...
    @data_folder.setter
    def data_folder(self, folder: _Path | None) -> None: ...
    @property
    def links(self) -> tuple[EffectInfo, ...]: ...

class Link:
    info: EffectInfo
    def __init__(self, chain: Chain, number: int, info: EffectInfo) -> None: ...
    def __getattr__(self, name: str) -> Any: ...
    def __setattr__(self, name: str, value: Any) -> None: ...

class Chain(Effect):
    def __new__(
        cls,
        links: str | Iterable[str | Effect],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        **properties: Any,
    ) -> Chain: ...
    def __len__(self) -> int: ...
    def __getitem__(self, index: int) -> Link: ...
    def __iter__(self) -> Iterator[Link]: ...
    def __getattr__(self, name: str) -> Any: ...
    def __setattr__(self, name: str, value: Any) -> None: ...
'''

READ = {"integer": "int", "boolean": "bool", "color": "str"}
WRITTEN = {"integer": "int | str", "boolean": "bool | int | str", "color": "_Color"}


def names(info: specialeffects.PropertyInfo) -> str:
    return f"Literal[{', '.join(repr(choice.id) for choice in info.choices)}]".replace("'", '"')


def is_complete(info: specialeffects.PropertyInfo) -> bool:
    """Whether every value of a choice has a name."""
    return len(info.choices) == info.maximum - info.minimum + 1


def class_name(info: specialeffects.EffectInfo) -> str:
    return "_" + type(specialeffects.Effect(info.id)).__name__


def constructor(info: specialeffects.EffectInfo) -> str:
    written = [f"{p.attribute}: {WRITTEN.get(p.type) or names(p) + ' | int'} = ..." for p in info.properties]
    parameters = [f'effect: Literal["{info.id}"]', "/", "*", "seed: int | None = ...", "data_folder: _Path | None = ..."]
    lines = "".join(f"        {parameter},\n" for parameter in ["cls", *parameters, *written])
    return f"    @overload\n    def __new__(\n{lines}    ) -> {class_name(info)}: ..."


def effect_class(info: specialeffects.EffectInfo) -> str:
    lines = []
    for p in info.properties:
        read = READ.get(p.type) or names(p) + ("" if is_complete(p) else " | int")
        written = WRITTEN.get(p.type) or f"{names(p)} | int"
        lines += [
            "    @property",
            f"    def {p.attribute}(self) -> {read}: ...",
            f"    @{p.attribute}.setter",
            f"    def {p.attribute}(self, value: {written}) -> None: ...",
        ]
    body = "\n" + "\n".join(lines) if lines else " ..."
    return f"class {class_name(info)}(Effect):{body}\n"


def stubs() -> str:
    from specialeffects._pictures import FORMATS

    effects = specialeffects.effects()
    head = HEAD.format(
        formats=", ".join(f'"{name}"' for name in FORMATS), constructors="\n".join(map(constructor, effects))
    )
    return "\n".join([head, *map(effect_class, effects)])


if __name__ == "__main__":
    print(stubs(), end="")
