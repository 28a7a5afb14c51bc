"""Live video effects on NumPy arrays, by libsfx.

    import cv2, specialeffects

    rain = specialeffects.Effect("rain", drop_size=9)
    camera = cv2.VideoCapture(0)
    while True:
        _, frame = camera.read()
        cv2.imshow("rain", rain(frame))         # changes the frame in place and returns it
        rain.drop_size = 5
        if cv2.waitKey(1) == 27:
            break

effects() lists what there is; help(rain) lists the properties of an effect. Effect says what frames it takes.
"""

from ._effects import Chain, Effect, Link
from ._libsfx import (
    ClampedWarning,
    DataMissingWarning,
    Error,
    FileError,
    InvalidValueError,
    OutOfMemoryError,
    PictureError,
    UnknownNameError,
    lib,
    text,
)
from ._list import (
    ChoiceInfo,
    EffectInfo,
    PresetInfo,
    PropertyInfo,
    effects,
    find,
    load_presets,
    presets,
)

__version__: str = text(lib.sfx_version_text())

__all__ = [
    "Chain",
    "ChoiceInfo",
    "ClampedWarning",
    "DataMissingWarning",
    "Effect",
    "EffectInfo",
    "Error",
    "FileError",
    "InvalidValueError",
    "Link",
    "OutOfMemoryError",
    "PictureError",
    "PresetInfo",
    "PropertyInfo",
    "UnknownNameError",
    "effects",
    "find",
    "load_presets",
    "presets",
]

del lib, text
