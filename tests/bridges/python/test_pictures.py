"""Arrays of all formats and layouts give what libsfx gives on tight memory; others are refused."""

import ctypes
import re

import numpy
import pytest

import specialeffects
from conftest import noise, planes
from specialeffects import Effect, PictureError, _libsfx
from specialeffects._libsfx import lib
from specialeffects._pictures import _CHANNELS, FORMATS, picture_of

PACKED = {name: _CHANNELS[number] for name, number in FORMATS.items() if number in _CHANNELS}
PLANAR = [name for name in FORMATS if name not in PACKED]
SIZES = [(48, 64), (47, 65), (1, 1), (2, 3), (33, 16)]
# One leaves chroma alone, one does not, one remembers and uses chance.
EFFECTS = ["line-art", "sepia", "rain"]


def libsfx(text, format, sizes_and_bytes, matrix=0, range=0):
    """What libsfx itself makes of frames in tight memory."""
    effect = ctypes.c_void_p()
    assert lib.sfx_create(text.encode(), ctypes.byref(effect)) == 0
    results = []
    for height, width, data in sizes_and_bytes:
        memory = ctypes.create_string_buffer(data, len(data))
        picture = _libsfx.Picture()
        assert lib.sfx_picture_layout(picture, FORMATS[format], width, height, memory) == len(data)
        picture.matrix, picture.range = matrix, range
        assert lib.sfx_process(effect, picture, _libsfx.NO_TIME) == 0
        results.append(memory.raw)
    lib.sfx_destroy(effect)
    return results


def shapes(format, height, width):
    """The shapes of the planes of a frame."""
    if format in PACKED:
        return [(height, width, PACKED[format])]
    number = FORMATS[format]
    return [(lib.sfx_plane_rows(number, i, height), lib.sfx_plane_row_bytes(number, i, width))
            for i in range(lib.sfx_format_planes(number))]


def tight(frame):
    return b"".join(plane.tobytes() for plane in frame)


def loose(plane):
    """The same plane with other distances: rows apart, and from the bottom up."""
    memory = numpy.full((plane.shape[0], plane.shape[1] + 5, *plane.shape[2:]), 77, numpy.uint8)
    view = memory[::-1, 2:-3]
    view[...] = plane
    return memory, view


@pytest.mark.parametrize("format", FORMATS)
@pytest.mark.parametrize("text", EFFECTS)
def test_every_format_and_layout_gives_what_libsfx_gives(format, text):
    sizes = [s for s in SIZES if format not in ("yuy2", "uyvy") or s[1] % 2 == 0]
    for height, width in sizes:
        frames = [[noise(*shape, seed=10 * i + k) for k, shape in enumerate(shapes(format, height, width))]
                  for i in range(4)]
        expected = libsfx(text, format, [(height, width, tight(frame)) for frame in frames])
        contiguous, strided = Effect(text), Effect(text)
        for frame, result in zip(frames, expected):
            memories, views = zip(*(loose(plane) for plane in frame))
            given = frame[0] if format in PACKED else tuple(frame)
            assert contiguous(given, format=format) is given
            assert tight(frame) == result
            strided(views[0] if format in PACKED else list(views), format=format)
            assert tight(views) == result
            for memory in memories:
                assert (memory[:, :2] == 77).all() and (memory[:, -3:] == 77).all()


@pytest.mark.parametrize("matrix", [0, 1, 2])
@pytest.mark.parametrize("full", [False, True])
def test_matrix_and_range_reach_libsfx(matrix, full):
    frame = noise(48, 64, 3)
    expected = libsfx("sepia", "bgr24", [(48, 64, frame.tobytes())], matrix, int(full))
    Effect("sepia")(frame, matrix=["bt601", "bt709", "bt2020"][matrix], full_range=full)
    assert [frame.tobytes()] == expected


def test_defaults_are_opencvs():
    for shape, format in (((48, 64, 3), "bgr24"), ((48, 64, 4), "bgra")):
        a, b = noise(*shape), noise(*shape)
        Effect("sepia")(a)
        Effect("sepia")(b, format=format)
        assert numpy.array_equal(a, b)
    y, u, v = planes(48, 64)
    expected = libsfx("rain", "i420", [(48, 64, tight((y, u, v)))])
    Effect("rain")((y, u, v))
    assert [tight((y, u, v))] == expected
    y, uv = noise(48, 64), noise(24, 32, 2)
    expected = libsfx("rain", "nv12", [(48, 64, tight((y, uv)))])
    Effect("rain")((y, uv))
    assert [tight((y, uv))] == expected


@pytest.mark.parametrize("format", ["i420", "yv12", "nv12", "nv21"])
def test_planes_below_each_other_in_one_array(format):
    frame = noise(72, 64)
    expected = libsfx("rain", format, [(48, 64, frame.tobytes())], 1, 1)
    Effect("rain")(frame, format=format, matrix="bt709", full_range=True)
    assert [frame.tobytes()] == expected


def test_planes_are_changed_in_place_without_a_copy():
    y, u, v = planes(48, 64)
    picture = picture_of((y, u, v), None, "bt601", False)
    assert [picture.planes[i] for i in range(3)] == [p.ctypes.data for p in (y, u, v)]
    assert [picture.strides[i] for i in range(3)] == [64, 32, 32]
    assert [picture.sizes[i] for i in range(3)] == [48 * 64, 24 * 32, 24 * 32]


def test_other_buffers_are_taken():
    memory = bytearray(noise(48, 64, 3).tobytes())
    frame = memoryview(memory).cast("B", (48, 64, 3))
    expected = libsfx("sepia", "bgr24", [(48, 64, bytes(memory))])
    assert Effect("sepia")(frame) is frame
    assert [bytes(memory)] == expected


def read_only(frame):
    frame.flags.writeable = False
    return frame


REFUSED = {
    "a gray picture": (lambda: noise(48, 64), {}, PictureError, "needs format="),
    "five channels": (lambda: noise(48, 64, 5), {}, PictureError, "needs format="),
    "four axes": (lambda: noise(2, 48, 64, 3), {}, PictureError, "needs format="),
    "a number": (lambda: numpy.array(5, numpy.uint8), {}, PictureError, "needs format="),
    "wrong channels": (lambda: noise(48, 64, 4), {"format": "bgr24"}, PictureError, "height x width x 3"),
    "an odd width of yuy2": (lambda: noise(48, 63, 2), {"format": "yuy2"}, PictureError, "rows of 128 bytes"),
    "planes in an array": (lambda: noise(48, 64, 3), {"format": "i444"}, PictureError, "tuple of its planes"),
    "a stack of other rows": (lambda: noise(73, 64), {"format": "i420"}, PictureError, "half as many"),
    "a stack of odd width": (lambda: noise(72, 63), {"format": "i420"}, PictureError, "half as many"),
    "a stack with gaps": (lambda: noise(72, 66)[:, :64], {"format": "i420"}, PictureError, "contiguous"),
    "too few planes": (lambda: planes(48, 64)[:2], {"format": "i420"}, PictureError, "3 planes"),
    "no planes": (lambda: (), {}, PictureError, "3 planes"),
    "a short plane": (lambda: (*planes(48, 64)[:2], noise(23, 32)), {}, PictureError, "plane 2"),
    "a narrow plane": (lambda: (*planes(48, 64)[:2], noise(24, 31)), {}, PictureError, "plane 2"),
    "a luma of three axes": (lambda: (noise(48, 64, 1), *planes(48, 64)[1:]), {}, PictureError, "2 axes"),
    "a chroma of one axis": (lambda: (*planes(48, 64)[:2], noise(24 * 32)), {}, PictureError, "plane 2"),
    "channels the other way": (lambda: noise(48, 64, 3)[:, :, ::-1], {}, PictureError, "ascontiguousarray"),
    "every other pixel": (lambda: noise(48, 128, 3)[:, ::2], {}, PictureError, "ascontiguousarray"),
    "mirrored": (lambda: noise(48, 64, 3)[:, ::-1], {}, PictureError, "ascontiguousarray"),
    "rows that are one row": (
        lambda: numpy.lib.stride_tricks.as_strided(noise(64, 3), (48, 64, 3), (0, 3, 1)), {}, PictureError, "overlap"),
    "rows that overlap": (
        lambda: numpy.lib.stride_tricks.as_strided(noise(9999), (48, 64, 3), (191, 3, 1)), {}, PictureError, "overlap"),
    "nothing": (lambda: noise(0, 64, 3), {}, PictureError, "sides are"),
    "no columns": (lambda: noise(48, 0, 3), {}, PictureError, "sides are"),
    "no stack": (lambda: noise(0, 64), {"format": "i420"}, PictureError, "sides are"),
    "too wide": (lambda: noise(1, 16385, 3), {}, PictureError, "sides are"),
    "numbers": (lambda: noise(48, 64, 3).astype(float), {}, TypeError, "uint8"),
    "signed bytes": (lambda: noise(48, 64, 3).view("i1"), {}, TypeError, "uint8"),
    "a list of numbers": (lambda: 5, {}, TypeError, "array"),
    "a text": (lambda: "frame", {}, TypeError, "array"),
    "a read-only array": (lambda: read_only(noise(48, 64, 3)), {}, ValueError, "read-only"),
    "bytes": (lambda: memoryview(bytes(48 * 64 * 3)).cast("B", (48, 64, 3)), {}, ValueError, "read-only"),
    "an unknown format": (lambda: noise(48, 64, 3), {"format": "bgr25"}, specialeffects.UnknownNameError, "bgr24"),
    "a number as format": (lambda: noise(48, 64, 3), {"format": 9}, specialeffects.UnknownNameError, "bgr24"),
    "an unknown matrix": (lambda: noise(48, 64, 3), {"matrix": "bt1"}, specialeffects.UnknownNameError, "bt709"),
}


@pytest.mark.parametrize("case", REFUSED)
def test_refuses(case):
    make, arguments, kind, message = REFUSED[case]
    with pytest.raises(kind, match=re.escape(message)):
        Effect("sepia")(make(), **arguments)
