"""What a call of the module adds to the library's own work, at 1280x720, for an effect that does little."""

from __future__ import annotations

import ctypes
import statistics
import time
from typing import Any

import numpy

import specialeffects
from specialeffects import _libsfx
from specialeffects._pictures import picture_of

FRAMES = 2000


def measure(name: str, frame: Any) -> None:
    effect = specialeffects.Effect("gray-scale")
    picture = picture_of(frame, None, "bt601", False)
    bare, module = [], []
    for _ in range(FRAMES):
        start = time.perf_counter_ns()
        _libsfx.lib.sfx_process(effect._handle, ctypes.byref(picture), _libsfx.NO_TIME)
        middle = time.perf_counter_ns()
        effect(frame)
        bare.append(middle - start)
        module.append(time.perf_counter_ns() - middle)
    added = statistics.median(module) - statistics.median(bare)
    fastest = min(module) - min(bare)
    print(f"{name}: median {added / 1e6:.4f} ms, difference of the fastest {fastest / 1e6:.4f} ms")


if __name__ == "__main__":
    half = (360, 640)
    measure("planar", tuple(numpy.zeros(shape, numpy.uint8) for shape in ((720, 1280), half, half)))
    measure("BGR", numpy.zeros((720, 1280, 3), numpy.uint8))
