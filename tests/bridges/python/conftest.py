"""What the tests share: frames, and the paths of the build."""

from __future__ import annotations

import os
from pathlib import Path

import numpy
import pytest

ROOT = Path(__file__).resolve().parents[3]
BUILD = Path(os.environ.get("SE_BUILD_DIR", ROOT / "build" / "release"))
MODULE = ROOT / "bridges" / "python"


def noise(*shape: int, seed: int = 1) -> numpy.ndarray:
    """Bytes that are the same in every run."""
    return numpy.random.default_rng(seed).integers(0, 256, shape, dtype=numpy.uint8)


def planes(height: int, width: int, seed: int = 1) -> tuple[numpy.ndarray, ...]:
    """A frame of planar 4:2:0."""
    half = ((height + 1) // 2, (width + 1) // 2)
    return noise(height, width, seed=seed), noise(*half, seed=seed + 1), noise(*half, seed=seed + 2)


@pytest.fixture(autouse=True)
def caches(monkeypatch: pytest.MonkeyPatch) -> None:
    """Data files that are made once, and no presets of the user's."""
    monkeypatch.setenv("XDG_CACHE_HOME", str(BUILD / "cache"))
    monkeypatch.setenv("XDG_CONFIG_HOME", "/nonexistent")
