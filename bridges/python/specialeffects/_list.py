"""What there is: effects with their properties, and presets."""

from __future__ import annotations

import os
from dataclasses import dataclass, field
from typing import Any

from . import _libsfx
from ._libsfx import lib, text

_TYPES = {
    _libsfx.INTEGER: "integer",
    _libsfx.BOOLEAN: "boolean",
    _libsfx.COLOR: "color",
    _libsfx.CHOICE: "choice",
}


@dataclass(frozen=True)
class ChoiceInfo:
    """A named value of a property."""

    value: int
    id: str
    description: str


@dataclass(frozen=True)
class PropertyInfo:
    """A property of an effect."""

    id: str
    """Lower case, dashed: "drop-size"."""
    attribute: str
    """The name of the attribute and keyword: "drop_size"."""
    name: str
    """For people: "Drop size"."""
    description: str
    type: str
    """"integer", "boolean", "color" or "choice"."""
    minimum: int
    maximum: int
    """Inclusive."""
    start: int
    """The value of a new effect."""
    choices: tuple[ChoiceInfo, ...] = field(repr=False)


@dataclass(frozen=True)
class EffectInfo:
    """An effect of the list."""

    id: str
    """Lower case, dashed, unique: "sketch-2"."""
    guid: str
    name: str
    """For people; the variants of an effect share it: "Sketch"."""
    title: str
    """For people, unique: "Sketch 2"."""
    kind: str
    """"tone", "distortion", "drawing", "time", "animated" or "faces"."""
    description: str
    variant: int | None
    """Number of the variant; None where there is only one."""
    has_memory: bool
    """A frame depends on earlier frames."""
    moves: bool
    """A still picture gives a different frame each time."""
    uses_chance: bool
    """Depends on the seed."""
    uses_time: bool
    """Depends on the time stamps of frames."""
    listed: bool
    data_file: str | None
    """The name of the data file that it reads, or None."""
    properties: tuple[PropertyInfo, ...] = field(repr=False)


@dataclass(frozen=True)
class PresetInfo:
    """An effect's text with a name; Effect("preset:noir") creates it."""

    id: str
    title: str
    description: str
    effect: str
    """The effect's text: "spot-light-2+gray-scale"."""
    is_user: bool
    """From a file of the user's."""


def _property(info: _libsfx.PropertyInfo) -> PropertyInfo:
    choices = (info.choices[i] for i in range(info.choice_count))
    return PropertyInfo(
        id=text(info.id),
        attribute=text(info.id).replace("-", "_"),
        name=text(info.name),
        description=text(info.description),
        type=_TYPES[info.type],
        minimum=info.minimum,
        maximum=info.maximum,
        start=info.start,
        choices=tuple(ChoiceInfo(c.value, text(c.id), text(c.description)) for c in choices),
    )


def _effect(info: _libsfx.EffectInfo) -> EffectInfo:
    return EffectInfo(
        id=text(info.id),
        guid=text(info.guid),
        name=text(info.name),
        title=text(info.title),
        kind=text(info.kind),
        description=text(info.description),
        variant=info.variant if info.variant >= 0 else None,
        has_memory=bool(info.flags & _libsfx.HAS_MEMORY),
        moves=bool(info.flags & _libsfx.MOVES),
        uses_chance=bool(info.flags & _libsfx.USES_CHANCE),
        uses_time=bool(info.flags & _libsfx.USES_TIME),
        listed=bool(info.flags & _libsfx.LISTED),
        data_file=text(info.data_file) if info.flags & _libsfx.NEEDS_DATA else None,
        properties=tuple(_property(info.properties[i].contents) for i in range(info.property_count)),
    )


_effects = {
    info.id: info
    for info in (_effect(lib.sfx_effect_at(i).contents) for i in range(lib.sfx_effect_count()))
}


def effects() -> tuple[EffectInfo, ...]:
    """All effects, in a constant order."""
    return tuple(_effects.values())


def find(name: str) -> EffectInfo:
    """The effect with this id, GUID, title or name; a name that variants share means the first of them.

    Case does not matter; blanks and underscores count as dashes. Raises UnknownNameError, which suggests
    near names.
    """
    found = lib.sfx_find(_libsfx.encode(name))
    if not found:
        raise _libsfx.UnknownNameError(_libsfx.message())
    return info_of(found)


def info_of(pointer: Any) -> EffectInfo:
    """The description of what the library points to."""
    return _effects[text(pointer.contents.id)]


def presets() -> tuple[PresetInfo, ...]:
    """All presets: those that come with the library, the user's own, and those of load_presets."""
    found = (lib.sfx_preset_at(i) for i in range(lib.sfx_preset_count()))
    return tuple(
        PresetInfo(text(p.id), text(p.title), text(p.description), text(p.effect), bool(p.is_user))
        for p in (pointer.contents for pointer in found if pointer)
    )


def load_presets(path: str | os.PathLike[str]) -> None:
    """Adds the presets of a file.

    Raises FileError where it cannot be read, and InvalidValueError where a line or a preset is not valid; no
    preset is added then.
    """
    _libsfx.check(lib.sfx_load_presets(_libsfx.encode_path(path)))
