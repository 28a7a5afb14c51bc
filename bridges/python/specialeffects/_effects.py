"""Effects that run on frames."""

from __future__ import annotations

import ctypes
import operator
import os
from functools import cache
from typing import Any, Iterable, Iterator, TypeVar

import numpy

from . import _libsfx
from ._libsfx import lib, text
from ._list import EffectInfo, PropertyInfo, info_of
from ._pictures import picture_of

_Base = TypeVar("_Base")


class Effect:
    """An effect that changes frames in place.

    Effect("rain", drop_size=9, seed=1) is the effect with this id, title, GUID or name, with some of its
    properties. Effect("sepia+rain:drop-size=9") and Effect("preset:noir") are rows of effects, Chains.

    The properties of an effect are attributes; help(effect) lists them with their ranges. A value out of
    range is clamped, with a ClampedWarning. A new value takes effect with the next frame.

    An effect is created for one stream of frames: many build on earlier frames. It may be used from several
    threads; the interpreter's lock is released while a frame runs, so effects on different threads run at
    the same time.
    """

    __slots__ = ("_handle", "_data_folder", "__weakref__")

    _handle: ctypes.c_void_p
    _data_folder: str | None

    def __new__(cls, effect: str, /, *, seed: int | None = None,
                data_folder: str | os.PathLike[str] | None = None, **properties: Any) -> Effect:
        """Creates an effect.

        effect: an id, title, GUID or name, or a text with settings, several effects or presets.
        seed: where the effect's random numbers start; 1 by default.
        data_folder: where data files are looked for first.
        properties: values of properties, by their names.

        Raises UnknownNameError and InvalidValueError.
        """
        handle = ctypes.c_void_p()
        _libsfx.check(lib.sfx_create(_libsfx.encode(effect), ctypes.byref(handle)))
        new = _adopt(handle, cls)
        for name, value in properties.items():
            new.set(name, value)
        if seed is not None:
            new.seed = seed
        if data_folder is not None:
            new._set_data_folder(data_folder)
        return new

    def __call__(self, frame: Any, *, format: str | None = None, time: float | None = None,
                 matrix: str = "bt601", full_range: bool = False) -> Any:
        """Applies the effect to a frame, in place, and returns the frame.

        frame: writable uint8 arrays, whose rows may have any distance:
            height x width x 3, BGR as OpenCV has it, or the bytes of another format of three channels;
            height x width x 4, BGRA by default; alpha is never changed;
            a tuple of planes: (y, u, v) is "i420" by default, (y, uv) is "nv12";
            one array of height * 3 / 2 rows, with a planar format=, as OpenCV and PyAV have it.
            Planes of "i420" and "yv12" of even size whose rows are tight are changed without any copy.
        format: "i420", "yv12", "nv12", "nv21", "i422", "i444", "yuy2", "uyvy", "rgb24", "bgr24", "rgba",
            "bgra", "argb" or "abgr".
        time: the frame's time stamp in seconds, of any origin; None is 1/30 s after the frame before it.
        matrix: with what matrix RGB becomes luma and chroma: "bt601", "bt709" or "bt2020".
        full_range: luma and chroma from 0 to 255 rather than from 16.

        A frame of another size starts the effect anew. Raises PictureError for a frame that is refused.
        """
        picture = picture_of(frame, format, matrix, full_range)
        status = lib.sfx_process(self._handle, ctypes.byref(picture), _nanoseconds(time))
        if status != _libsfx.OK:
            _libsfx.check(status)
        return frame

    def prepare(self, width: int, height: int) -> None:
        """Gets ready for frames of a size: takes memory, builds tables, reads or makes data files.

        Optional: the first frame does it when needed, but it can take long.
        """
        _libsfx.check(lib.sfx_prepare(self._handle, _int32(width), _int32(height)))

    def reset(self) -> None:
        """Starts anew: forgets earlier frames and time, starts the random numbers again. Keeps properties."""
        _libsfx.check(lib.sfx_reset(self._handle))

    def set_defaults(self) -> None:
        """Sets all properties to their starting values, and forgets settings files."""
        _libsfx.check(lib.sfx_set_defaults(self._handle))

    def load_settings(self, path: str | os.PathLike[str]) -> None:
        """Reads a settings file: the background colour of Line Art, or a cascade for Picture Me.

        Raises UnknownNameError where the effect takes none, and FileError.
        """
        _libsfx.check(lib.sfx_load_settings(self._handle, _libsfx.encode_path(path)))

    def set(self, name: str, value: bool | int | str | tuple[int, int, int]) -> None:
        """Sets the property of this name, "drop_size" or "drop-size"; "1.drop-size" is that of link 1.

        value: a number; a text such as "on", "#0000c0" or the id of a choice; (red, green, blue).
        """
        _set(self._handle, name.replace("_", "-"), value)

    def get(self, name: str) -> str:
        """The value of the property of this name, as text."""
        buffer = ctypes.create_string_buffer(_libsfx.VALUE_SIZE)
        property_id = _libsfx.encode(name.replace("_", "-"))
        _libsfx.check(lib.sfx_get(self._handle, property_id, buffer, _libsfx.VALUE_SIZE))
        return text(buffer.value)

    @property
    def seed(self) -> int:
        """Where the random numbers start; 1 at first. Setting it starts the effect anew, like reset."""
        seed = ctypes.c_uint32()
        _libsfx.check(lib.sfx_get_seed(self._handle, ctypes.byref(seed)))
        return seed.value

    @seed.setter
    def seed(self, seed: int) -> None:
        seed = operator.index(seed)
        if not 0 <= seed < 2**32:
            raise _libsfx.InvalidValueError(f"a seed is a number from 0 to {2**32 - 1}, not {seed}")
        _libsfx.check(lib.sfx_set_seed(self._handle, seed))

    @property
    def data_folder(self) -> str | None:
        """Where data files are looked for before the installed ones; None is nowhere."""
        return self._data_folder

    @data_folder.setter
    def data_folder(self, folder: str | os.PathLike[str] | None) -> None:
        self._set_data_folder(folder)

    def _set_data_folder(self, folder: str | os.PathLike[str] | None) -> None:
        path = None if folder is None else _libsfx.encode_path(folder)
        _libsfx.check(lib.sfx_set_data_folder(self._handle, path))
        object.__setattr__(self, "_data_folder", None if folder is None else os.fspath(folder))

    @property
    def links(self) -> tuple[EffectInfo, ...]:
        """The effects that this applies, in order; a single one except for a Chain."""
        count = lib.sfx_link_count(self._handle)
        return tuple(info_of(lib.sfx_link_info(self._handle, i)) for i in range(count))

    def __copy__(self) -> Effect:
        """A new effect with the same properties, seed and files, but without a memory of earlier frames."""
        handle = ctypes.c_void_p()
        _libsfx.check(lib.sfx_clone(self._handle, ctypes.byref(handle)))
        copy = _adopt(handle, type(self))
        object.__setattr__(copy, "_data_folder", self._data_folder)
        return copy

    def __deepcopy__(self, memo: dict[int, Any]) -> Effect:
        return self.__copy__()

    def __str__(self) -> str:
        """The text that creates this effect: "rain:drop-size=9"."""
        size = lib.sfx_print(self._handle, None, 0)
        while True:
            if size < 0:
                _libsfx.check(size)
            buffer = ctypes.create_string_buffer(size + 1)
            needed = lib.sfx_print(self._handle, buffer, size + 1)
            if 0 <= needed <= size:
                return text(buffer.value)
            size = needed  # another thread made the text longer

    def __repr__(self) -> str:
        return f"specialeffects.Effect({str(self)!r})"

    def __setattr__(self, name: str, value: Any) -> None:
        if not hasattr(type(self), name):
            raise AttributeError(self._explain(name))
        object.__setattr__(self, name, value)

    def __getattr__(self, name: str) -> Any:
        raise AttributeError(self._explain(name))

    def _explain(self, name: str) -> str:
        """Why there is no such attribute; the library suggests near names."""
        if not name.startswith("_"):
            try:
                self.get(name)
            except (_libsfx.Error, ValueError) as error:
                return str(error)
        return f"{type(self).__name__} has no attribute {name!r}"

    def __del__(self, destroy: Any = lib.sfx_destroy) -> None:
        destroy(self._handle)


class Link:
    """An effect of a Chain. Its properties are attributes."""

    __slots__ = ("_chain", "_number", "info")

    info: EffectInfo

    def __init__(self, chain: Chain, number: int, info: EffectInfo) -> None:
        self._chain = chain
        self._number = number
        self.info = info

    @property
    def _handle(self) -> ctypes.c_void_p:
        return self._chain._handle

    def __repr__(self) -> str:
        return f"<link {self._number} of {self._chain!r}: {self.info.title}>"


class Chain(Effect):
    """Several effects that are applied in a row to each frame.

    Chain(["sepia", Effect("rain", drop_size=9)]) takes texts and effects; of an effect it copies the
    properties. It is one effect with one seed: the random numbers of link n start with seed + n. chain[1] is
    link 1, whose properties are attributes: chain[1].drop_size = 5. An attribute of the chain itself is that
    of the first link that has it.
    """

    __slots__ = ()

    def __new__(cls, links: str | Iterable[str | Effect], /, **settings: Any) -> Chain:
        joined = links if isinstance(links, str) else "+".join(str(link) for link in links)
        new = super().__new__(cls, joined, **settings)
        assert isinstance(new, Chain)
        return new

    def __len__(self) -> int:
        count: int = lib.sfx_link_count(self._handle)
        return count

    def __getitem__(self, index: int) -> Link:
        infos = self.links
        number = range(len(infos))[index]
        return _link_class(infos[number])(self, number, infos[number])

    def __iter__(self) -> Iterator[Link]:
        return (self[i] for i in range(len(self)))

    def __dir__(self) -> list[str]:
        return [*super().__dir__(), *(p.attribute for info in self.links for p in info.properties)]

    def __getattr__(self, name: str) -> Any:
        return getattr(self._first_with(name), name)

    def __setattr__(self, name: str, value: Any) -> None:
        if hasattr(type(self), name):
            object.__setattr__(self, name, value)
        else:
            setattr(self._first_with(name), name, value)

    def _first_with(self, name: str) -> Link:
        for number, info in enumerate(() if name.startswith("_") else self.links):
            if any(p.attribute == name for p in info.properties):
                return self[number]
        raise AttributeError(self._explain(name))


def _adopt(handle: ctypes.c_void_p, kind: type[Effect]) -> Effect:
    """An object for a new effect of the library's, which it will destroy."""
    if kind is Effect:
        one = lib.sfx_link_count(handle) == 1
        kind = _effect_class(info_of(lib.sfx_link_info(handle, 0))) if one else Chain
    new = object.__new__(kind)
    object.__setattr__(new, "_handle", handle)
    object.__setattr__(new, "_data_folder", None)
    return new


@cache
def _effect_class(info: EffectInfo) -> type[Effect]:
    """The class of an effect: Effect with the effect's properties and texts."""
    members = {p.attribute: _attribute(p, "") for p in info.properties}
    return _class(info, Effect, f"{info.title}. {info.description}", members)


@cache
def _link_class(info: EffectInfo) -> type[Link]:
    """The class of an effect that is a link of a Chain."""
    members = {p.attribute: _attribute(p, "{}.") for p in info.properties}
    return _class(info, Link, f"A link of a Chain: {info.title}. {info.description}", members)


def _class(info: EffectInfo, base: type[_Base], doc: str, members: dict[str, property]) -> type[_Base]:
    name = "".join(part.capitalize() for part in info.id.split("-"))
    namespace: dict[str, Any] = {"__slots__": (), "__module__": __package__, "__doc__": doc, **members}
    return type(name, (base,), namespace)


def _attribute(info: PropertyInfo, prefix: str) -> property:
    """A property of the library's as a property of a class."""
    values: dict[int, Any] = {choice.value: choice.id for choice in info.choices}
    if info.type == "boolean":
        values = {0: False, 1: True}

    def name_in(effect: Any) -> str:
        return prefix.format(effect._number) + info.id if prefix else info.id

    def getter(effect: Any) -> Any:
        value = ctypes.c_int32()
        name = name_in(effect).encode()
        _libsfx.check(lib.sfx_get_int(effect._handle, name, ctypes.byref(value)))
        if info.type == "color":
            return f"#{value.value:06x}"
        return values.get(value.value, value.value)

    def setter(effect: Any, value: Any) -> None:
        _set(effect._handle, name_in(effect), value)

    return property(getter, setter, None, f"{info.description}\n\n{_range(info)}")


def _range(info: PropertyInfo) -> str:
    """The values that a property takes, and the one it starts with: "0 to 9; 4 at first"."""
    if info.type == "boolean":
        return f"bool; {bool(info.start)} at first"
    if info.type == "color":
        return f"a colour, '#rrggbb', 0xRRGGBB or (red, green, blue); '#{info.start:06x}' at first"
    if info.choices:
        start = next((c.id for c in info.choices if c.value == info.start), info.start)
        return f"{', '.join(repr(c.id) for c in info.choices)}; {start!r} at first"
    return f"int from {info.minimum} to {info.maximum}; {info.start} at first"


def _set(handle: ctypes.c_void_p, name: str, value: Any) -> None:
    if isinstance(value, tuple):
        value = ",".join(str(operator.index(part)) for part in value)
    property_id = _libsfx.encode(name)
    if isinstance(value, str):
        _libsfx.check(lib.sfx_set(handle, property_id, _libsfx.encode(value)))
    else:
        number = bool(value) if isinstance(value, numpy.bool_) else value
        _libsfx.check(lib.sfx_set_int(handle, property_id, _int32(number)))


def _int32(value: Any) -> int:
    """An integer, clamped to what the library takes."""
    return max(-(2**31), min(operator.index(value), 2**31 - 1))


def _nanoseconds(time: Any) -> int:
    if time is None:
        return _libsfx.NO_TIME
    nanoseconds: int = round(time * 1_000_000_000)
    if abs(nanoseconds) >= 2**63:
        raise ValueError(f"a time stamp of {time} seconds is out of range")
    return nanoseconds
