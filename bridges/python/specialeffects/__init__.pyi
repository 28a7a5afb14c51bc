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
_Format = Literal["i420", "yv12", "nv12", "nv21", "i422", "i444", "yuy2", "uyvy", "rgb24", "bgr24", "rgba", "bgra", "argb", "abgr"]

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
    @overload
    def __new__(
        cls,
        effect: Literal["graphic-pen-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        colored: bool | int | str = ...,
    ) -> _GraphicPen1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["graphic-pen-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        colored: bool | int | str = ...,
    ) -> _GraphicPen2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["graphic-pen-3"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        colored: bool | int | str = ...,
    ) -> _GraphicPen3: ...
    @overload
    def __new__(
        cls,
        effect: Literal["graphic-pen-4"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        colored: bool | int | str = ...,
    ) -> _GraphicPen4: ...
    @overload
    def __new__(
        cls,
        effect: Literal["chrome-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Chrome1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["chrome-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Chrome2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["plaster"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Plaster: ...
    @overload
    def __new__(
        cls,
        effect: Literal["sketch-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Sketch1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["sketch-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Sketch2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["sketch-3"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Sketch3: ...
    @overload
    def __new__(
        cls,
        effect: Literal["line-art-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        background_color: _Color = ...,
    ) -> _LineArt1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["line-art-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        background_color: _Color = ...,
    ) -> _LineArt2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["tiled-up"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        tile_size: int | str = ...,
    ) -> _TiledUp: ...
    @overload
    def __new__(
        cls,
        effect: Literal["neonize"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Neonize: ...
    @overload
    def __new__(
        cls,
        effect: Literal["chalk-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        draw_edges: bool | int | str = ...,
    ) -> _Chalk1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["chalk-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        draw_edges: bool | int | str = ...,
    ) -> _Chalk2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["chalk-3"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        draw_edges: bool | int | str = ...,
    ) -> _Chalk3: ...
    @overload
    def __new__(
        cls,
        effect: Literal["liquefy-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        change_speed: int | str = ...,
        intensity: int | str = ...,
    ) -> _Liquefy1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["liquefy-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        change_speed: int | str = ...,
        intensity: int | str = ...,
    ) -> _Liquefy2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["liquefy-3"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        change_speed: int | str = ...,
        intensity: int | str = ...,
    ) -> _Liquefy3: ...
    @overload
    def __new__(
        cls,
        effect: Literal["fire"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Fire: ...
    @overload
    def __new__(
        cls,
        effect: Literal["cotton-candy"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _CottonCandy: ...
    @overload
    def __new__(
        cls,
        effect: Literal["rain"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        drop_period: int | str = ...,
        drop_size: int | str = ...,
    ) -> _Rain: ...
    @overload
    def __new__(
        cls,
        effect: Literal["four-square"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _FourSquare: ...
    @overload
    def __new__(
        cls,
        effect: Literal["twirl-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Twirl1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["twirl-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Twirl2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["moving-twirl"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _MovingTwirl: ...
    @overload
    def __new__(
        cls,
        effect: Literal["clouds"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        cloud_color: _Color = ...,
        intensity: int | str = ...,
        type: Literal["veil", "patches", "hanging"] | int = ...,
    ) -> _Clouds: ...
    @overload
    def __new__(
        cls,
        effect: Literal["antiquated-movie"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        sepia: bool | int | str = ...,
        vignetting: bool | int | str = ...,
    ) -> _AntiquatedMovie: ...
    @overload
    def __new__(
        cls,
        effect: Literal["hallway-vision-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _HallwayVision1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["hallway-vision-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _HallwayVision2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["rain-drops"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        rain_rate: int | str = ...,
    ) -> _RainDrops: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-5"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes5: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-4"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes4: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-8"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes8: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-3"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes3: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-7"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes7: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-6"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes6: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-9"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes9: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-10"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes10: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-11"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes11: ...
    @overload
    def __new__(
        cls,
        effect: Literal["camera-flashes-12"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        mode: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int = ...,
        moving: bool | int | str = ...,
        colorizing: bool | int | str = ...,
        animation: bool | int | str = ...,
    ) -> _CameraFlashes12: ...
    @overload
    def __new__(
        cls,
        effect: Literal["motion-blur-0"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _MotionBlur0: ...
    @overload
    def __new__(
        cls,
        effect: Literal["motion-detector"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        blur_delay: int | str = ...,
        blur_color: _Color = ...,
    ) -> _MotionDetector: ...
    @overload
    def __new__(
        cls,
        effect: Literal["motion-blur-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _MotionBlur1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["colored-pencil"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _ColoredPencil: ...
    @overload
    def __new__(
        cls,
        effect: Literal["spot-light-0"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _SpotLight0: ...
    @overload
    def __new__(
        cls,
        effect: Literal["spot-light-1"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _SpotLight1: ...
    @overload
    def __new__(
        cls,
        effect: Literal["spot-light-2"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _SpotLight2: ...
    @overload
    def __new__(
        cls,
        effect: Literal["quark"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Quark: ...
    @overload
    def __new__(
        cls,
        effect: Literal["logo-animation"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        objects_number: int | str = ...,
        type: Literal["text", "picture"] | int = ...,
        moving_animation: bool | int | str = ...,
        colorize: bool | int | str = ...,
        random_colors: bool | int | str = ...,
        color_1: _Color = ...,
        color_2: _Color = ...,
        color_3: _Color = ...,
        color_4: _Color = ...,
        color_5: _Color = ...,
    ) -> _LogoAnimation: ...
    @overload
    def __new__(
        cls,
        effect: Literal["blockhead"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Blockhead: ...
    @overload
    def __new__(
        cls,
        effect: Literal["fish-eye"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        large_sphere: bool | int | str = ...,
        effect_type: Literal["sphere", "cosine", "arc-cosine"] | int = ...,
    ) -> _FishEye: ...
    @overload
    def __new__(
        cls,
        effect: Literal["polarize"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Polarize: ...
    @overload
    def __new__(
        cls,
        effect: Literal["comic-book"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _ComicBook: ...
    @overload
    def __new__(
        cls,
        effect: Literal["time-distortion"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _TimeDistortion: ...
    @overload
    def __new__(
        cls,
        effect: Literal["x-ray"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _XRay: ...
    @overload
    def __new__(
        cls,
        effect: Literal["picture-me"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
        speed: int | str = ...,
        rotation_speed: int | str = ...,
        textures_number: int | str = ...,
        picture_size: int | str = ...,
    ) -> _PictureMe: ...
    @overload
    def __new__(
        cls,
        effect: Literal["bulge"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Bulge: ...
    @overload
    def __new__(
        cls,
        effect: Literal["gray-scale"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _GrayScale: ...
    @overload
    def __new__(
        cls,
        effect: Literal["sepia"],
        /,
        *,
        seed: int | None = ...,
        data_folder: _Path | None = ...,
    ) -> _Sepia: ...
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

class _GraphicPen1(Effect):
    @property
    def colored(self) -> bool: ...
    @colored.setter
    def colored(self, value: bool | int | str) -> None: ...

class _GraphicPen2(Effect):
    @property
    def colored(self) -> bool: ...
    @colored.setter
    def colored(self, value: bool | int | str) -> None: ...

class _GraphicPen3(Effect):
    @property
    def colored(self) -> bool: ...
    @colored.setter
    def colored(self, value: bool | int | str) -> None: ...

class _GraphicPen4(Effect):
    @property
    def colored(self) -> bool: ...
    @colored.setter
    def colored(self, value: bool | int | str) -> None: ...

class _Chrome1(Effect): ...

class _Chrome2(Effect): ...

class _Plaster(Effect): ...

class _Sketch1(Effect): ...

class _Sketch2(Effect): ...

class _Sketch3(Effect): ...

class _LineArt1(Effect):
    @property
    def background_color(self) -> str: ...
    @background_color.setter
    def background_color(self, value: _Color) -> None: ...

class _LineArt2(Effect):
    @property
    def background_color(self) -> str: ...
    @background_color.setter
    def background_color(self, value: _Color) -> None: ...

class _TiledUp(Effect):
    @property
    def tile_size(self) -> int: ...
    @tile_size.setter
    def tile_size(self, value: int | str) -> None: ...

class _Neonize(Effect): ...

class _Chalk1(Effect):
    @property
    def draw_edges(self) -> bool: ...
    @draw_edges.setter
    def draw_edges(self, value: bool | int | str) -> None: ...

class _Chalk2(Effect):
    @property
    def draw_edges(self) -> bool: ...
    @draw_edges.setter
    def draw_edges(self, value: bool | int | str) -> None: ...

class _Chalk3(Effect):
    @property
    def draw_edges(self) -> bool: ...
    @draw_edges.setter
    def draw_edges(self, value: bool | int | str) -> None: ...

class _Liquefy1(Effect):
    @property
    def change_speed(self) -> int: ...
    @change_speed.setter
    def change_speed(self, value: int | str) -> None: ...
    @property
    def intensity(self) -> int: ...
    @intensity.setter
    def intensity(self, value: int | str) -> None: ...

class _Liquefy2(Effect):
    @property
    def change_speed(self) -> int: ...
    @change_speed.setter
    def change_speed(self, value: int | str) -> None: ...
    @property
    def intensity(self) -> int: ...
    @intensity.setter
    def intensity(self, value: int | str) -> None: ...

class _Liquefy3(Effect):
    @property
    def change_speed(self) -> int: ...
    @change_speed.setter
    def change_speed(self, value: int | str) -> None: ...
    @property
    def intensity(self) -> int: ...
    @intensity.setter
    def intensity(self, value: int | str) -> None: ...

class _Fire(Effect): ...

class _CottonCandy(Effect): ...

class _Rain(Effect):
    @property
    def drop_period(self) -> int: ...
    @drop_period.setter
    def drop_period(self, value: int | str) -> None: ...
    @property
    def drop_size(self) -> int: ...
    @drop_size.setter
    def drop_size(self, value: int | str) -> None: ...

class _FourSquare(Effect): ...

class _Twirl1(Effect): ...

class _Twirl2(Effect): ...

class _MovingTwirl(Effect): ...

class _Clouds(Effect):
    @property
    def cloud_color(self) -> str: ...
    @cloud_color.setter
    def cloud_color(self, value: _Color) -> None: ...
    @property
    def intensity(self) -> int: ...
    @intensity.setter
    def intensity(self, value: int | str) -> None: ...
    @property
    def type(self) -> Literal["veil", "patches", "hanging"]: ...
    @type.setter
    def type(self, value: Literal["veil", "patches", "hanging"] | int) -> None: ...

class _AntiquatedMovie(Effect):
    @property
    def sepia(self) -> bool: ...
    @sepia.setter
    def sepia(self, value: bool | int | str) -> None: ...
    @property
    def vignetting(self) -> bool: ...
    @vignetting.setter
    def vignetting(self, value: bool | int | str) -> None: ...

class _HallwayVision1(Effect): ...

class _HallwayVision2(Effect): ...

class _RainDrops(Effect):
    @property
    def rain_rate(self) -> int: ...
    @rain_rate.setter
    def rain_rate(self, value: int | str) -> None: ...

class _CameraFlashes1(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"]: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes5(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"]: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes4(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"]: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes8(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes3(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"]: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes7(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"]: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes2(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"]: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes6(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"]: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes9(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes10(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes11(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _CameraFlashes12(Effect):
    @property
    def mode(self) -> Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int: ...
    @mode.setter
    def mode(self, value: Literal["glows", "glares", "ragged-stars", "regular-stars", "changing-stars", "ringed-stars", "random"] | int) -> None: ...
    @property
    def moving(self) -> bool: ...
    @moving.setter
    def moving(self, value: bool | int | str) -> None: ...
    @property
    def colorizing(self) -> bool: ...
    @colorizing.setter
    def colorizing(self, value: bool | int | str) -> None: ...
    @property
    def animation(self) -> bool: ...
    @animation.setter
    def animation(self, value: bool | int | str) -> None: ...

class _MotionBlur0(Effect): ...

class _MotionDetector(Effect):
    @property
    def blur_delay(self) -> int: ...
    @blur_delay.setter
    def blur_delay(self, value: int | str) -> None: ...
    @property
    def blur_color(self) -> str: ...
    @blur_color.setter
    def blur_color(self, value: _Color) -> None: ...

class _MotionBlur1(Effect): ...

class _ColoredPencil(Effect): ...

class _SpotLight0(Effect): ...

class _SpotLight1(Effect): ...

class _SpotLight2(Effect): ...

class _Quark(Effect): ...

class _LogoAnimation(Effect):
    @property
    def objects_number(self) -> int: ...
    @objects_number.setter
    def objects_number(self, value: int | str) -> None: ...
    @property
    def type(self) -> Literal["text", "picture"]: ...
    @type.setter
    def type(self, value: Literal["text", "picture"] | int) -> None: ...
    @property
    def moving_animation(self) -> bool: ...
    @moving_animation.setter
    def moving_animation(self, value: bool | int | str) -> None: ...
    @property
    def colorize(self) -> bool: ...
    @colorize.setter
    def colorize(self, value: bool | int | str) -> None: ...
    @property
    def random_colors(self) -> bool: ...
    @random_colors.setter
    def random_colors(self, value: bool | int | str) -> None: ...
    @property
    def color_1(self) -> str: ...
    @color_1.setter
    def color_1(self, value: _Color) -> None: ...
    @property
    def color_2(self) -> str: ...
    @color_2.setter
    def color_2(self, value: _Color) -> None: ...
    @property
    def color_3(self) -> str: ...
    @color_3.setter
    def color_3(self, value: _Color) -> None: ...
    @property
    def color_4(self) -> str: ...
    @color_4.setter
    def color_4(self, value: _Color) -> None: ...
    @property
    def color_5(self) -> str: ...
    @color_5.setter
    def color_5(self, value: _Color) -> None: ...

class _Blockhead(Effect): ...

class _FishEye(Effect):
    @property
    def large_sphere(self) -> bool: ...
    @large_sphere.setter
    def large_sphere(self, value: bool | int | str) -> None: ...
    @property
    def effect_type(self) -> Literal["sphere", "cosine", "arc-cosine"]: ...
    @effect_type.setter
    def effect_type(self, value: Literal["sphere", "cosine", "arc-cosine"] | int) -> None: ...

class _Polarize(Effect): ...

class _ComicBook(Effect): ...

class _TimeDistortion(Effect): ...

class _XRay(Effect): ...

class _PictureMe(Effect):
    @property
    def speed(self) -> int: ...
    @speed.setter
    def speed(self, value: int | str) -> None: ...
    @property
    def rotation_speed(self) -> int: ...
    @rotation_speed.setter
    def rotation_speed(self, value: int | str) -> None: ...
    @property
    def textures_number(self) -> int: ...
    @textures_number.setter
    def textures_number(self, value: int | str) -> None: ...
    @property
    def picture_size(self) -> int: ...
    @picture_size.setter
    def picture_size(self, value: int | str) -> None: ...

class _Bulge(Effect): ...

class _GrayScale(Effect): ...

class _Sepia(Effect): ...
