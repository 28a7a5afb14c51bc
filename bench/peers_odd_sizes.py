#!/usr/bin/env python3
"""Runs effects of libsfx, GStreamer, frei0r and FFmpeg at odd and tiny sizes, and prints what happens.

    bench/peers_odd_sizes.py BUILD [--filter TEXT] [--verbose]

BUILD is a folder with libsfx.so, and perhaps with our GStreamer and frei0r plugins. What is not installed is left out.
Each filter runs with its default settings, for six frames of noise, in a process of its own:

  1. in memory with 64 KB on both sides whose bytes are compared afterwards,
  2. with an unmapped page after the frame, and then before it (not for FFmpeg, which copies frames into its own),
  3. once more where all memory from malloc starts with another value.

`refuses` means that the filter reported an error; `crashes` that run 1 ended by a signal; `hangs` that it took ten
seconds; `outside` that it wrote next to the frame or touched an unmapped page; `unwritten` that the result depends on
memory that nobody had written; `edge` that at 177x143 the last columns or rows differ from the same pixels of a larger
frame, or differ in more columns or rows than at 176x144. The rest is `works`. Chance that is not repeatable is not
judged by the last two.
"""

import argparse
import ctypes
import functools
import io
import itertools
import mmap
import os
import pickle
import random
import re
import resource
import select
import signal
import subprocess
import sys
from collections import Counter
from collections.abc import Callable, Iterator, Sequence
from dataclasses import dataclass
from pathlib import Path

EVEN = (176, 144)
ODD = (177, 143)
SIZES = (EVEN, ODD, (3, 5), (1, 1))
FILLS = (0x55, 0xAA)  # what new memory holds
LARGER = (8, 8)    # what a frame is enlarged by to compare edges
FRAMES = 6
SECONDS = 10
MARGIN = 65536
CANARY = 0xC3
ALIGNMENT = 16

LIBC = ctypes.CDLL(None, use_errno=True)
LIBC.mmap.restype = ctypes.c_void_p
LIBC.mmap.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_long]
LIBC.mprotect.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int]
M_PERTURB = -6


# ---- frames --------------------------------------------------------------------------------------------------------


@dataclass(frozen=True)
class Plane:
    """Where a plane lies in a frame; `pixel` bytes stand for `across` by `down` pixels of the picture."""

    offset: int
    stride: int
    row_bytes: int
    rows: int
    pixel: int = 1
    across: int = 1
    down: int = 1


@dataclass(frozen=True)
class Layout:
    """The planes of a frame, and its bytes."""

    planes: tuple[Plane, ...]
    size: int


def up(value: int, multiple: int) -> int:
    """The next multiple."""
    return (value + multiple - 1) // multiple * multiple


def layout_of(name: str, width: int, height: int, row: int = 1) -> Layout:
    """A frame of a format by its name in FFmpeg; rows are multiples of `row` bytes."""
    chroma = (width + 1) // 2, (height + 1) // 2
    shapes = {
        "yuv420p": [(width, height, 1, 1, 1), (*chroma, 1, 2, 2), (*chroma, 1, 2, 2)],
        "yuv444p": [(width, height, 1, 1, 1)] * 3,
        "gbrp": [(width, height, 1, 1, 1)] * 3,
        "gray": [(width, height, 1, 1, 1)],
        "rgb24": [(width, height, 3, 1, 1)],
        "yuyv422": [(chroma[0], height, 4, 2, 1)],
    }.get(name, [(width, height, 4, 1, 1)])
    planes, offset = [], 0
    for plane_width, rows, pixel, across, down in shapes:
        stride = up(plane_width * pixel, row)
        planes.append(Plane(offset, stride, plane_width * pixel, rows, pixel, across, down))
        offset += stride * (up(rows, 2) if row > 1 and name == "yuv420p" and down == 1 else rows)
    return Layout(tuple(planes), offset)


NOISE = [random.Random(plane).randbytes(1024 * 256) for plane in range(3)]


@functools.cache
def noise(layout: Layout) -> bytes:
    """A frame of noise; a smaller frame is the upper left part of a larger one."""
    frame = bytearray(layout.size)
    for plane, source in zip(layout.planes, NOISE):
        for y in range(plane.rows):
            start = plane.offset + y * plane.stride
            frame[start:start + plane.row_bytes] = source[y * 1024:y * 1024 + plane.row_bytes]
    return bytes(frame)


def visible(layout: Layout, frame: bytes) -> bytes:
    """The frame without the bytes between its rows."""
    return b"".join(frame[plane.offset + y * plane.stride:plane.offset + y * plane.stride + plane.row_bytes]
                    for plane in layout.planes for y in range(plane.rows))


def differing_margin(small: Layout, frame: bytes, large: Layout, larger_frame: bytes) -> int:
    """How many of the last columns and rows have to be left out until a frame equals that part of a larger one."""
    margin = 0
    for plane, other in zip(small.planes, large.planes):
        columns = plane.row_bytes // plane.pixel
        for y in range(plane.rows):
            start, other_start = plane.offset + y * plane.stride, other.offset + y * other.stride
            row = frame[start:start + plane.row_bytes]
            other_row = larger_frame[other_start:other_start + plane.row_bytes]
            if row == other_row:
                continue
            first = next(i for i in range(plane.row_bytes) if row[i] != other_row[i]) // plane.pixel
            margin = max(margin, min((columns - first) * plane.across, (plane.rows - y) * plane.down))
    return margin


class Memory:
    """Memory for a frame, with a margin or an unmapped page on both sides."""

    def __init__(self, size: int, guard: str) -> None:
        """`guard` is "" for margins, "after" or "before" for a frame that touches that unmapped page."""
        page = mmap.PAGESIZE
        inside = up(size + (2 * MARGIN if not guard else 0), page)
        base = LIBC.mmap(None, inside + 2 * page, mmap.PROT_READ | mmap.PROT_WRITE,
                         mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS, -1, 0)
        if guard:
            LIBC.mprotect(base, page, 0)
            LIBC.mprotect(base + page + inside, page, 0)
        self.start, self.inside, self.size = base + page, inside, size
        ctypes.memset(self.start, CANARY, inside)
        offset = {"": MARGIN, "before": 0, "after": (inside - size) // ALIGNMENT * ALIGNMENT}[guard]
        self.address = self.start + offset

    def write(self, frame: bytes) -> None:
        """Stores a frame."""
        ctypes.memmove(self.address, frame, self.size)

    def read(self) -> bytes:
        """The frame."""
        return ctypes.string_at(self.address, self.size)

    def is_intact(self) -> bool:
        """Whether nobody wrote beside the frame."""
        before = self.address - self.start
        after = self.inside - before - self.size
        return (ctypes.string_at(self.start, before) == bytes([CANARY]) * before
                and ctypes.string_at(self.address + self.size, after) == bytes([CANARY]) * after)


# ---- runs in a process of their own ---------------------------------------------------------------------------------


class RefusedError(Exception):
    """The filter reported an error."""


@dataclass(frozen=True)
class Request:
    """A run at a size; `guard` is that of Memory, and memory from malloc starts with `fill`."""

    width: int
    height: int
    guard: str = ""
    fill: int = FILLS[0]


@dataclass
class Run:
    """How a run ended: "done", "refuses", "crashes" or "hangs"; whether all around the frame is intact; the result."""

    end: str
    intact: bool = True
    frame: bytes = b""
    about: str = ""


@dataclass
class Filter:
    """A filter: `run` does what is requested; `isolated` says that it takes care of crashes itself."""

    name: str
    layout: Callable[[int, int], Layout]
    run: Callable[[Request], Run]
    isolated: bool = False


@dataclass
class Collection:
    """Filters of one maker."""

    title: str
    filters: list[Filter]
    has_guards: bool = True


def answer(item: Filter, request: Request) -> Run:
    """A run, in the calling process."""
    LIBC.mallopt(M_PERTURB, request.fill)
    LIBC.srand(1)
    try:
        return item.run(request)
    except RefusedError as error:
        return Run("refuses", about=str(error))


def runs(item: Filter, requests: Sequence[Request]) -> list[Run]:
    """Runs, one after the other, in a child process; the first that does not return ends the list."""
    if item.isolated:
        return [item.run(request) for request in requests]
    reader, writer = os.pipe()
    child = os.fork()
    if child == 0:
        os.close(reader)
        for stream in (1, 2):
            os.dup2(os.open(os.devnull, os.O_WRONLY), stream)
        with os.fdopen(writer, "wb") as stream:
            for request in requests:
                pickle.dump(answer(item, request), stream)
                stream.flush()
        os._exit(0)
    os.close(writer)
    data = b""
    while select.select([reader], [], [], SECONDS)[0]:
        part = os.read(reader, 1 << 20)
        if not part:
            break
        data += part
    else:
        os.kill(child, signal.SIGKILL)
    os.close(reader)
    status = os.waitpid(child, 0)[1]
    stream, found = io.BytesIO(data), []
    while stream.tell() < len(data):
        found.append(pickle.load(stream))
    if os.WIFSIGNALED(status):
        number = os.WTERMSIG(status)
        found.append(Run("hangs" if number == signal.SIGKILL else "crashes", about=signal.Signals(number).name))
    return found


# ---- the collections ------------------------------------------------------------------------------------------------


class SfxPicture(ctypes.Structure):
    """sfx_picture of sfx/sfx.h."""

    _fields_ = [("struct_size", ctypes.c_size_t), ("format", ctypes.c_int32), ("width", ctypes.c_int32),
                ("height", ctypes.c_int32), ("matrix", ctypes.c_int32), ("range", ctypes.c_int32),
                ("planes", ctypes.c_void_p * 4), ("strides", ctypes.c_ssize_t * 4), ("sizes", ctypes.c_size_t * 4)]


def libsfx_filters(library: Path) -> Iterator[Filter]:
    """All effects, with planar and with packed pictures."""
    sfx = ctypes.CDLL(str(library))
    sfx.sfx_effect_count.restype = ctypes.c_size_t
    sfx.sfx_effect_at.restype = ctypes.POINTER(ctypes.c_char_p)
    sfx.sfx_effect_at.argtypes = [ctypes.c_size_t]
    sfx.sfx_picture_layout.argtypes = [ctypes.c_void_p, ctypes.c_int32, ctypes.c_int32, ctypes.c_int32, ctypes.c_void_p]
    sfx.sfx_process.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int64]

    def make(name: bytes, number: int, form: str) -> Filter:
        def run(request: Request) -> Run:
            layout = layout_of(form, request.width, request.height)
            memory, picture, effect = Memory(layout.size, request.guard), SfxPicture(), ctypes.c_void_p()
            if sfx.sfx_create(name, ctypes.byref(effect)) < 0:
                raise RefusedError("sfx_create")
            picture.struct_size = ctypes.sizeof(picture)
            sfx.sfx_picture_layout(ctypes.byref(picture), number, request.width, request.height, memory.address)
            for index in range(FRAMES):
                memory.write(noise(layout))
                status = sfx.sfx_process(effect, ctypes.byref(picture), index * 40_000_000)
                if status < 0:
                    raise RefusedError(f"sfx_process gives {status}")
            sfx.sfx_destroy(effect)
            return Run("done", memory.is_intact(), memory.read())
        return Filter(f"{name.decode()} ({form})", functools.partial(layout_of, form), run)

    for index in range(sfx.sfx_effect_count()):
        name = sfx.sfx_effect_at(index)[1]  # the member after struct_size
        for number, form in ((0, "yuv420p"), (10, "rgba")):
            yield make(name, number, form)


class Frei0rInfo(ctypes.Structure):
    """f0r_plugin_info_t of frei0r.h."""

    _fields_ = [("name", ctypes.c_char_p), ("author", ctypes.c_char_p), ("type", ctypes.c_int),
                ("color_model", ctypes.c_int), ("frei0r_version", ctypes.c_int), ("major", ctypes.c_int),
                ("minor", ctypes.c_int), ("params", ctypes.c_int), ("explanation", ctypes.c_char_p)]


def frei0r_filters(folder: Path) -> Iterator[Filter]:
    """The plugins of a folder that are filters."""
    def make(path: Path) -> Filter:
        def run(request: Request) -> Run:
            plugin = ctypes.CDLL(str(path))
            plugin.f0r_construct.restype = ctypes.c_void_p
            plugin.f0r_destruct.argtypes = [ctypes.c_void_p]
            plugin.f0r_update.argtypes = [ctypes.c_void_p, ctypes.c_double, ctypes.c_void_p, ctypes.c_void_p]
            plugin.f0r_init()
            instance = plugin.f0r_construct(request.width, request.height)
            if not instance:
                raise RefusedError("f0r_construct")
            layout = layout_of("rgba", request.width, request.height)
            source, target = Memory(layout.size, request.guard), Memory(layout.size, request.guard)
            for index in range(FRAMES):
                source.write(noise(layout))
                target.write(bytes([request.fill]) * layout.size)
                plugin.f0r_update(instance, index * 0.04, source.address, target.address)
            plugin.f0r_destruct(instance)
            return Run("done", source.is_intact() and target.is_intact(), target.read())
        return Filter(path.stem, functools.partial(layout_of, "rgba"), run)

    def is_filter(path: Path) -> bool:
        def run(_request: Request) -> Run:
            plugin, info = ctypes.CDLL(str(path)), Frei0rInfo()
            plugin.f0r_init()
            plugin.f0r_get_plugin_info(ctypes.byref(info))
            return Run("done", info.type == 0)
        item = Filter(path.stem, functools.partial(layout_of, "rgba"), run)
        return runs(item, [Request(0, 0)]) == [Run("done")]

    return (make(path) for path in sorted(folder.glob("*.so")) if is_filter(path))


GSTREAMER_FORMATS = (("I420", "yuv420p"), ("RGBx", "rgba"), ("BGRx", "rgba"), ("xRGB", "rgba"), ("RGBA", "rgba"),
                     ("ARGB", "rgba"), ("AYUV", "rgba"), ("GRAY8", "gray"), ("RGB", "rgb24"))
FLOW_OK = 0


class GStreamer:
    """The functions that run an element in a harness."""

    def __init__(self) -> None:
        """Raises OSError where GStreamer is not installed."""
        self.gst = ctypes.CDLL("libgstreamer-1.0.so.0", mode=ctypes.RTLD_GLOBAL)
        self.check = ctypes.CDLL("libgstcheck-1.0.so.0")
        pointer = ctypes.c_void_p
        for library, name, result, *arguments in (
                (self.gst, "gst_element_factory_make", pointer, ctypes.c_char_p, ctypes.c_char_p),
                (self.gst, "gst_buffer_new_wrapped_full", pointer, ctypes.c_int, pointer, ctypes.c_size_t,
                 ctypes.c_size_t, ctypes.c_size_t, pointer, pointer),
                (self.gst, "gst_buffer_extract", ctypes.c_size_t, pointer, ctypes.c_size_t, pointer, ctypes.c_size_t),
                (self.check, "gst_harness_new", pointer, ctypes.c_char_p),
                (self.check, "gst_harness_set_src_caps_str", None, pointer, ctypes.c_char_p),
                (self.check, "gst_harness_push", ctypes.c_int, pointer, pointer),
                (self.check, "gst_harness_try_pull", pointer, pointer),
                (self.check, "gst_harness_teardown", None, pointer)):
            function = getattr(library, name)
            function.restype, function.argtypes = result, arguments
        self.gst.gst_init(None, None)

    def process(self, element: str, caps: str, layout: Layout, guard: str) -> Run:
        """Pushes frames through an element and gives the last that comes out."""
        harness = self.check.gst_harness_new(element.encode())
        self.check.gst_harness_set_src_caps_str(harness, caps.encode())
        result, memories = b"", []
        for _ in range(FRAMES):
            memory = Memory(layout.size, guard)
            memory.write(noise(layout))
            memories.append(memory)
            buffer = self.gst.gst_buffer_new_wrapped_full(0, memory.address, layout.size, 0, layout.size, None, None)
            flow = self.check.gst_harness_push(harness, buffer)
            if flow != FLOW_OK:
                raise RefusedError(f"flow {flow}")
            pulled = self.check.gst_harness_try_pull(harness)
            if pulled:
                target = ctypes.create_string_buffer(layout.size)
                size = self.gst.gst_buffer_extract(pulled, 0, target, layout.size)
                result = target.raw[:size]
        if len(result) != layout.size:
            raise RefusedError("no frame of this size comes out")
        self.check.gst_harness_teardown(harness)
        return Run("done", all(memory.is_intact() for memory in memories), result)


def gstreamer_elements(plugin: str) -> list[str]:
    """Names of a plugin's elements."""
    command = ["gst-inspect-1.0", "--plugin", plugin]
    printed = subprocess.run(command, capture_output=True, text=True, check=False).stdout
    return re.findall(r"^  ([\w-]+): ", printed, re.MULTILINE)


def gstreamer_filters(gstreamer: GStreamer, plugins: tuple[str, ...]) -> Iterator[Filter]:
    """The elements of plugins that take one of the formats."""
    def does_run(item: Filter) -> bool:
        return runs(item, [Request(*EVEN)])[0].end == "done"

    def make(element: str, gst_format: str, form: str) -> Filter:
        def layout(width: int, height: int) -> Layout:
            return layout_of(form, width, height, 4)

        def run(request: Request) -> Run:
            caps = f"video/x-raw,format={gst_format},width={request.width},height={request.height},framerate=25/1"
            return gstreamer.process(element, caps, layout(request.width, request.height), request.guard)
        return Filter(element, layout, run)

    for plugin in plugins:
        for element in gstreamer_elements(plugin):
            candidates = (make(element, *names) for names in GSTREAMER_FORMATS)
            yield from itertools.islice(filter(does_run, candidates), 1)


FFMPEG_FILTERS = """
    gbrp colorchannelmixer=.393:.769:.189:0:.349:.686:.168:0:.272:.534:.131:0
    gbrp colorbalance=rs=.3
    gbrp colortemperature=4000
    gbrp vibrance=intensity=1
    gbrp rgbashift=rh=3:bv=-3
    gbrp dilation
    gbrp pseudocolor=preset=inferno
    gbrp colorcontrast=rc=1
    yuv420p avgblur=sizeX=2
    yuv420p boxblur=1
    yuv420p gblur=sigma=2
    yuv420p smartblur
    yuv420p bilateral
    yuv420p median=radius=2
    yuv420p unsharp
    yuv420p cas
    yuv420p sobel
    yuv420p prewitt
    yuv420p roberts
    yuv420p kirsch
    yuv420p convolution=-2 -1 0 -1 1 1 0 1 2
    gray edgedetect=mode=wires
    gbrp edgedetect=mode=colormix
    yuv420p erosion
    yuv420p negate
    yuv420p hue=s=0
    yuv420p eq=contrast=1.5
    yuv420p lutyuv=y=negval
    gbrp curves=vintage
    yuv420p chromashift=cbh=3
    yuv420p noise=alls=20:all_seed=1
    yuv420p vignette
    yuv420p lenscorrection=k1=-0.2:k2=-0.05
    yuv420p rotate=0.3
    yuv420p perspective=10:10:W-10:0:0:H:W:H
    yuv420p hflip
    yuv420p vflip
    yuv420p pixelize=w=16:h=16
    yuv420p swaprect
    yuv420p random=frames=3:seed=1
    yuv420p tmix=frames=3
    yuv420p lagfun
    yuv420p amplify
    rgb24 photosensitivity
    rgba elbg=codebook_length=8:seed=1
    yuv420p deband
    yuv420p gradfun
    yuv420p hqdn3d
    yuv420p atadenoise
    yuv420p nlmeans=r=5
    yuv420p drawgrid
    yuv420p datascope
    yuv420p monochrome
    gray sobel
    yuv420p geq=lum=255-lum(X\\,Y)
"""


def ffmpeg_filters() -> Iterator[Filter]:
    """The filters above that the program has."""
    printed = subprocess.run(["ffmpeg", "-v", "error", "-filters"], capture_output=True, text=True, check=True).stdout
    present = set(re.findall(r"^ [T.][S.][C.] (\w+)", printed, re.MULTILINE))

    def make(form: str, text: str) -> Filter:
        def run(request: Request) -> Run:
            layout, size = layout_of(form, request.width, request.height), f"{request.width}x{request.height}"
            command = ["ffmpeg", "-nostdin", "-v", "error", "-noauto_conversion_filters", "-filter_threads", "1",
                       "-f", "rawvideo", "-pix_fmt", form, "-s", size, "-i", "/dev/stdin", "-vf", text,
                       "-f", "rawvideo", "-"]
            try:
                done = subprocess.run(command, input=noise(layout) * FRAMES, capture_output=True, timeout=SECONDS,
                                      env={**os.environ, "MALLOC_PERTURB_": str(request.fill)}, check=False)
            except subprocess.TimeoutExpired:
                return Run("hangs")
            about = done.stderr.decode(errors="replace").strip().split("\n")[-1]
            if done.returncode < 0:
                return Run("crashes", about=signal.Signals(-done.returncode).name)
            if done.returncode > 0 or len(done.stdout) < layout.size:
                return Run("refuses", about=about)
            return Run("done", frame=done.stdout[-layout.size:])
        return Filter(f"{text.split('=')[0]} ({form})", functools.partial(layout_of, form), run, isolated=True)

    for line in FFMPEG_FILTERS.strip().split("\n"):
        form, text = line.strip().split(" ", 1)
        if text.split("=")[0] in present:
            yield make(form, text)


# ---- the verdict ----------------------------------------------------------------------------------------------------


def verdict(item: Filter, size: tuple[int, int], has_guards: bool) -> tuple[str, str]:
    """One of the words above, and more about it."""
    guards = ("after", "before") if has_guards else ()
    plain, *others = runs(item, [Request(*size), Request(*size, fill=FILLS[1]),
                                 *(Request(*size, guard) for guard in guards)])
    if plain.end != "done":
        return plain.end, plain.about
    if not plain.intact:
        return "outside", "writes"
    for name, run in zip(("with other memory", *guards), others):
        if run.end != "done":
            return "outside" if name in guards and run.end == "crashes" else run.end, f"{run.about}, {name}"
    seen, other = visible(item.layout(*size), plain.frame), visible(item.layout(*size), others[0].frame)
    if seen != other:
        again = runs(item, [Request(*size), Request(*size)])[-1]
        if seen != visible(item.layout(*size), again.frame):
            return "works", "not repeatable"
        return "unwritten", f"{sum(a != b for a, b in zip(seen, other))} of {len(seen)} bytes"
    if size == ODD:
        odd, even = margin_of(item, ODD), margin_of(item, EVEN)
        if even < odd <= 16:
            return "edge", f"the last {odd} columns or rows; {even} at {EVEN[0]}x{EVEN[1]}"
    return "works", ""


def margin_of(item: Filter, size: tuple[int, int]) -> int:
    """How many of the last columns and rows depend on the frame's size."""
    larger = size[0] + LARGER[0], size[1] + LARGER[1]
    found = [runs(item, [Request(*each)])[0] for each in (size, larger)]
    if any(run.end != "done" for run in found):
        return size[0]
    return differing_margin(item.layout(*size), found[0].frame, item.layout(*larger), found[1].frame)


def judge(collection: Collection, pattern: str, verbose: bool) -> None:
    """Prints a collection's row."""
    found: dict[tuple[int, int], Counter[str]] = {size: Counter() for size in SIZES}
    count = 0
    for item in collection.filters:
        if pattern not in item.name:
            continue
        count += 1
        for size in SIZES:
            word, about = verdict(item, size, collection.has_guards)
            found[size][word] += 1
            if verbose and (word != "works" or about):
                print(f"{item.name} at {size[0]}x{size[1]}: {word} {about}", file=sys.stderr, flush=True)
    cells = [", ".join(f"{number} {word}" for word, number in words.most_common()) for words in found.values()]
    print(f"| {collection.title} | {count} | {' | '.join(cells)} |", flush=True)


def main() -> int:
    """Prints the table."""
    parser = argparse.ArgumentParser(description="Runs effects at odd and tiny sizes.")
    parser.add_argument("build", type=Path)
    parser.add_argument("--filter", default="", help="only filters with this in their names")
    parser.add_argument("--verbose", action="store_true", help="name on the error stream what does not work")
    options = parser.parse_args()
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    build = options.build.resolve()
    os.environ["GST_PLUGIN_PATH"] = str(build / "gstreamer-1.0")
    collections = [Collection("this, as libsfx: planar and RGBA", list(libsfx_filters(build / "libsfx.so")))]
    frei0r_folders = (("this, as frei0r plugins", build / "frei0r-1"), ("frei0r", Path("/usr/lib/frei0r-1")))
    collections += [Collection(title, list(frei0r_filters(folder))) for title, folder in frei0r_folders]
    try:
        gstreamer = GStreamer()
        for title, plugins in (("this, as GStreamer elements", ("specialeffects",)),
                               ("GStreamer good", ("effectv", "videofilter", "alpha", "smpte")),
                               ("GStreamer bad", ("geometrictransform", "gaudieffects", "coloreffects", "smooth",
                                                  "videofiltersbad"))):
            collections.append(Collection(title, list(gstreamer_filters(gstreamer, plugins))))
    except OSError as error:
        print(error, file=sys.stderr)
    collections.append(Collection("FFmpeg", list(ffmpeg_filters()), has_guards=False))
    print("| collection | filters | " + " | ".join(f"{width}x{height}" for width, height in SIZES) + " |")
    print("|---" * (2 + len(SIZES)) + "|")
    for collection in collections:
        if collection.filters:
            judge(collection, options.filter, options.verbose)
    return 0


if __name__ == "__main__":
    sys.exit(main())
