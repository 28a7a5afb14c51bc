"""NumPy arrays as the library's pictures, without a copy."""

from __future__ import annotations

import ctypes
from typing import Any, Sequence

import numpy
import numpy.typing

from . import _libsfx
from ._libsfx import Picture, PictureError, lib, text

Array = numpy.typing.NDArray[numpy.uint8]

FORMATS = {text(lib.sfx_format_name(i)): i for i in range(_libsfx.FORMAT_COUNT)}
MATRICES = {"bt601": _libsfx.BT601, "bt709": _libsfx.BT709, "bt2020": _libsfx.BT2020}

# Bytes of a pixel of the packed formats, which are the last axis of their arrays.
_CHANNELS = {_libsfx.YUY2: 2, _libsfx.UYVY: 2, _libsfx.RGB24: 3, _libsfx.BGR24: 3}
_CHANNELS |= {f: 4 for f in (_libsfx.RGBA, _libsfx.BGRA, _libsfx.ARGB, _libsfx.ABGR)}
# The planes of these may lie one below the other in one array, the way OpenCV and PyAV keep them.
_STACKED = {_libsfx.I420, _libsfx.YV12, _libsfx.NV12, _libsfx.NV21}
_DEFAULT_FOR_CHANNELS = {3: "bgr24", 4: "bgra"}
_DEFAULT_FOR_PLANES = {2: "nv12", 3: "i420"}


def picture_of(frame: Any, format: str | None, matrix: str, full_range: bool) -> Picture:
    """Describes the memory of a frame to the library. The arrays must outlive the picture."""
    picture = Picture(struct_size=ctypes.sizeof(Picture))
    picture.matrix = _number(MATRICES, matrix, "matrix")
    picture.range = _libsfx.FULL if full_range else _libsfx.LIMITED
    if isinstance(frame, (tuple, list)):
        _lay_planes(picture, frame, format)
    else:
        _lay_array(picture, frame, format)
    return picture


def _lay_planes(picture: Picture, planes: Sequence[Any], name: str | None) -> None:
    name = _DEFAULT_FOR_PLANES.get(len(planes), "i420") if name is None else name
    format = _number(FORMATS, name, "format")
    count = lib.sfx_format_planes(format)
    if len(planes) != count:
        raise PictureError(f"{name} has {count} planes, and {len(planes)} are given")
    if count == 1:
        _lay_array(picture, planes[0], name)
        return
    luma = _checked(planes[0])
    if luma.ndim != 2:
        raise PictureError(f"a luma plane has 2 axes, rows and columns, not {luma.ndim}")
    _set_size(picture, format, *luma.shape)
    for index, plane in enumerate(planes):
        _lay_plane(picture, index, _checked(plane))


def _lay_array(picture: Picture, frame: Any, name: str | None) -> None:
    array = _checked(frame)
    if name is None:
        name = _DEFAULT_FOR_CHANNELS.get(array.shape[2]) if array.ndim == 3 else None
        if name is None:
            raise PictureError(
                f"an array of shape {array.shape} needs format=; without it, height x width x 3 is BGR and "
                "height x width x 4 is BGRA"
            )
    format = _number(FORMATS, name, "format")
    if format in _STACKED and array.ndim == 2:
        _lay_stack(picture, array, format, name)
    elif format not in _CHANNELS:
        raise PictureError(f"a frame in {name} is a tuple of its planes")
    elif array.ndim != 3 or array.shape[2] != _CHANNELS[format]:
        raise PictureError(f"a frame in {name} is height x width x {_CHANNELS[format]}, not {array.shape}")
    else:
        _set_size(picture, format, *array.shape[:2])
        _lay_plane(picture, 0, array)


def _lay_stack(picture: Picture, array: Array, format: int, name: str) -> None:
    rows, width = array.shape
    if rows % 3 != 0 or width % 2 != 0 or not array.flags.c_contiguous:
        raise PictureError(
            f"a frame in {name} in one array is contiguous, of an even width, and has rows for luma and half "
            f"as many for chroma; {array.shape} is not"
        )
    matrix, range = picture.matrix, picture.range
    if not lib.sfx_picture_layout(picture, format, width, rows // 3 * 2, _address(array)):
        raise PictureError(f"an array of shape {array.shape} is refused; sides are 1 to {_libsfx.MAX_SIDE}")
    picture.matrix, picture.range = matrix, range


def _set_size(picture: Picture, format: int, height: int, width: int) -> None:
    if not (1 <= height <= _libsfx.MAX_SIDE and 1 <= width <= _libsfx.MAX_SIDE):
        raise PictureError(f"frames of {width} by {height} are refused; sides are 1 to {_libsfx.MAX_SIDE}")
    picture.format, picture.height, picture.width = format, height, width


def _lay_plane(picture: Picture, index: int, plane: Array) -> None:
    """Sets a plane of a picture whose format and size are set, and which the plane has to match."""
    rows = lib.sfx_plane_rows(picture.format, index, picture.height)
    row_bytes = lib.sfx_plane_row_bytes(picture.format, index, picture.width)
    tight = 1
    for length, stride in zip(plane.shape[:0:-1], plane.strides[:0:-1]):
        if length > 1 and stride != tight:
            raise PictureError(
                "the pixels of a row do not lie side by side; numpy.ascontiguousarray makes a copy in which they do"
            )
        tight *= length
    if plane.ndim < 2 or plane.shape[0] != rows or tight != row_bytes:
        raise PictureError(
            f"plane {index} of a frame of {picture.width} by {picture.height} has {rows} rows of {row_bytes} "
            f"bytes; an array of shape {plane.shape} has not"
        )
    stride = plane.strides[0]
    if rows > 1 and abs(stride) < row_bytes:
        raise PictureError("the rows of an array overlap")
    picture.planes[index] = _address(plane)
    picture.strides[index] = stride if rows > 1 else 0
    picture.sizes[index] = abs(stride) * (rows - 1) + row_bytes if rows > 1 else row_bytes


def _checked(given: Any) -> Array:
    """The array itself, or a view of another object's buffer."""
    try:
        array: Array = given if isinstance(given, numpy.ndarray) else numpy.asarray(memoryview(given))
    except TypeError:
        raise TypeError(f"a frame is an array or a tuple of arrays, not {type(given).__name__}") from None
    if array.dtype != numpy.uint8:
        raise TypeError(f"a frame has bytes, uint8, not {array.dtype}")
    if not array.flags.writeable:
        raise ValueError("a frame is changed in place, and this array is read-only")
    return array


def _address(array: Array) -> int:
    address: int = array.__array_interface__["data"][0]
    return address


def _number(numbers: dict[str, int], name: str, what: str) -> int:
    number = numbers.get(name.lower() if isinstance(name, str) else name)
    if number is None:
        raise _libsfx.UnknownNameError(f"there is no {what} {name!r}; there are {', '.join(numbers)}")
    return number
