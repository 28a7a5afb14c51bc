"""libsfx through ctypes: its structures and functions, and its statuses as exceptions.

A call through ctypes releases the interpreter's lock until the library returns.
"""

from __future__ import annotations

import ctypes
import os
import warnings
from ctypes import POINTER, c_char_p, c_int, c_int32, c_int64, c_size_t, c_ssize_t, c_uint32, c_void_p
from pathlib import Path

OK, CLAMPED, DATA_MISSING = 0, 1, 2
ERROR_ARGUMENT, ERROR_UNKNOWN, ERROR_VALUE, ERROR_PICTURE = -1, -2, -3, -4
ERROR_FILE, ERROR_MEMORY, ERROR_FAILED = -5, -6, -7

INTEGER, BOOLEAN, COLOR, CHOICE = 0, 1, 2, 3

HAS_MEMORY, MOVES, NEEDS_DATA, USES_CHANCE, USES_TIME, LISTED = 1, 2, 4, 8, 16, 32

I420, YV12, NV12, NV21, I422, I444, YUY2, UYVY = 0, 1, 2, 3, 4, 5, 6, 7
RGB24, BGR24, RGBA, BGRA, ARGB, ABGR = 8, 9, 10, 11, 12, 13
FORMAT_COUNT = 14

BT601, BT709, BT2020 = 0, 1, 2
LIMITED, FULL = 0, 1

MAX_SIDE = 16384
VALUE_SIZE = 64
NO_TIME = -(2**63)


class Choice(ctypes.Structure):
    _fields_ = [("value", c_int32), ("id", c_char_p), ("description", c_char_p)]


class PropertyInfo(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("id", c_char_p),
        ("name", c_char_p),
        ("description", c_char_p),
        ("type", c_int),
        ("minimum", c_int32),
        ("maximum", c_int32),
        ("start", c_int32),
        ("choice_count", c_size_t),
        ("choices", POINTER(Choice)),
    ]


class EffectInfo(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("id", c_char_p),
        ("guid", c_char_p),
        ("name", c_char_p),
        ("title", c_char_p),
        ("kind", c_char_p),
        ("description", c_char_p),
        ("variant", c_int32),
        ("flags", c_uint32),
        ("data_file", c_char_p),
        ("property_count", c_size_t),
        ("properties", POINTER(POINTER(PropertyInfo))),
    ]


class PresetInfo(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("id", c_char_p),
        ("title", c_char_p),
        ("description", c_char_p),
        ("effect", c_char_p),
        ("is_user", c_int32),
    ]


class Picture(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("format", c_int32),
        ("width", c_int32),
        ("height", c_int32),
        ("matrix", c_int32),
        ("range", c_int32),
        ("planes", c_void_p * 4),
        ("strides", c_ssize_t * 4),
        ("sizes", c_size_t * 4),
    ]


# Of each function: what it returns, and what it takes.
FUNCTIONS = {
    "sfx_version": (c_int, []),
    "sfx_version_text": (c_char_p, []),
    "sfx_status_text": (c_char_p, [c_int32]),
    "sfx_message": (c_char_p, []),
    "sfx_effect_count": (c_size_t, []),
    "sfx_effect_at": (POINTER(EffectInfo), [c_size_t]),
    "sfx_find": (POINTER(EffectInfo), [c_char_p]),
    "sfx_preset_count": (c_size_t, []),
    "sfx_preset_at": (POINTER(PresetInfo), [c_size_t]),
    "sfx_load_presets": (c_int, [c_char_p]),
    "sfx_create": (c_int, [c_char_p, POINTER(c_void_p)]),
    "sfx_clone": (c_int, [c_void_p, POINTER(c_void_p)]),
    "sfx_destroy": (None, [c_void_p]),
    "sfx_link_count": (c_size_t, [c_void_p]),
    "sfx_link_info": (POINTER(EffectInfo), [c_void_p, c_size_t]),
    "sfx_print": (c_int, [c_void_p, c_char_p, c_size_t]),
    "sfx_set": (c_int, [c_void_p, c_char_p, c_char_p]),
    "sfx_set_int": (c_int, [c_void_p, c_char_p, c_int32]),
    "sfx_get": (c_int, [c_void_p, c_char_p, c_char_p, c_size_t]),
    "sfx_get_int": (c_int, [c_void_p, c_char_p, POINTER(c_int32)]),
    "sfx_set_defaults": (c_int, [c_void_p]),
    "sfx_load_settings": (c_int, [c_void_p, c_char_p]),
    "sfx_set_seed": (c_int, [c_void_p, c_uint32]),
    "sfx_get_seed": (c_int, [c_void_p, POINTER(c_uint32)]),
    "sfx_set_data_folder": (c_int, [c_void_p, c_char_p]),
    "sfx_format_name": (c_char_p, [c_int32]),
    "sfx_format_from_name": (c_int, [c_char_p, POINTER(c_int32)]),
    "sfx_format_planes": (c_int32, [c_int32]),
    "sfx_plane_rows": (c_int32, [c_int32, c_int32, c_int32]),
    "sfx_plane_row_bytes": (c_size_t, [c_int32, c_int32, c_int32]),
    "sfx_picture_layout": (c_size_t, [POINTER(Picture), c_int32, c_int32, c_int32, c_void_p]),
    "sfx_process": (c_int, [c_void_p, POINTER(Picture), c_int64]),
    "sfx_prepare": (c_int, [c_void_p, c_int32, c_int32]),
    "sfx_reset": (c_int, [c_void_p]),
}


def _load() -> ctypes.CDLL:
    """The library beside this file, as in a wheel, or else the system's."""
    name = "libsfx.so.1"
    own = Path(__file__).with_name(name)
    try:
        library = ctypes.CDLL(str(own) if own.exists() else name)
    except OSError as error:
        raise ImportError(f"specialeffects needs the library {name}: {error}") from error
    for function, (result, arguments) in FUNCTIONS.items():
        getattr(library, function).restype = result
        getattr(library, function).argtypes = arguments
    return library


lib = _load()


class Error(Exception):
    """An error of the library, with its sentence. The other exceptions of this module derive from it."""

    status: int = ERROR_FAILED
    """The library's status, a negative number."""


class UnknownNameError(Error, LookupError):
    """There is no such effect, preset, property or value name."""

    status = ERROR_UNKNOWN


class InvalidValueError(Error, ValueError):
    """A value or an effect's text does not have the required form."""

    status = ERROR_VALUE


class PictureError(Error, ValueError):
    """A frame is refused: its format, its size, the layout of its arrays."""

    status = ERROR_PICTURE


class FileError(Error, OSError):
    """A file cannot be read, or does not hold what it should."""

    status = ERROR_FILE


class OutOfMemoryError(Error, MemoryError):
    """The library is out of memory. The effect stays usable."""

    status = ERROR_MEMORY


class ClampedWarning(UserWarning):
    """A value was out of range; the nearest bound was set."""


class DataMissingWarning(UserWarning):
    """A data file cannot be had; the effect runs without it."""


_ERRORS = {
    kind.status: kind for kind in (UnknownNameError, InvalidValueError, PictureError, FileError, OutOfMemoryError)
}
_PACKAGE = str(Path(__file__).parent) + os.sep


def message() -> str:
    """The library's sentence about the last call on this thread whose status was not OK."""
    return text(lib.sfx_message())


def check(status: int) -> None:
    """Raises what a negative status means, and warns of a positive one."""
    if status == OK:
        return
    if status > 0:
        kind = DataMissingWarning if status == DATA_MISSING else ClampedWarning
        warnings.warn(message(), kind, stacklevel=_depth_of_caller())
        return
    if status == ERROR_ARGUMENT:
        raise ValueError(message())
    raise _ERRORS.get(status, Error)(message())


def _depth_of_caller() -> int:
    """How many frames above `check` the code lies that called this package."""
    import sys

    depth = 1
    frame = sys._getframe(1)
    while frame.f_back is not None and frame.f_code.co_filename.startswith(_PACKAGE):
        frame = frame.f_back
        depth += 1
    return depth


def text(value: bytes | None) -> str:
    return "" if value is None else value.decode("utf-8", "replace")


def encode(value: str) -> bytes:
    """A text for the library. A null character would silently cut it short."""
    if not isinstance(value, str):
        raise TypeError(f"a str is needed, not {type(value).__name__}")
    if "\0" in value:
        raise ValueError("a text holds a null character")
    return value.encode("utf-8")


def encode_path(value: str | os.PathLike[str]) -> bytes:
    path = os.fsencode(value)
    if b"\0" in path:
        raise ValueError("a path holds a null character")
    return path
