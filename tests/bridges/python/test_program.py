"""Every effect gives the bytes that the program gives."""

import shutil
import subprocess

import pytest

import specialeffects
from conftest import BUILD, planes

PROGRAM = BUILD / "host" / "specialeffects"
HEIGHT, WIDTH, COUNT, SEED = 48, 64, 12, 7
HEADER = b"YUV4MPEG2 W%d H%d F30:1 Ip A1:1 C420jpeg\n" % (WIDTH, HEIGHT)


@pytest.fixture(scope="module")
def clip(tmp_path_factory):
    path = tmp_path_factory.mktemp("clip") / "in.y4m"
    frames = (b"FRAME\n" + b"".join(p.tobytes() for p in planes(HEIGHT, WIDTH, i)) for i in range(COUNT))
    path.write_bytes(HEADER + b"".join(frames))
    return path


@pytest.fixture(scope="module")
def data(tmp_path_factory):
    """A copy of the build's data folder: the noise file of Clouds is made in it."""
    folder = tmp_path_factory.mktemp("data") / "specialeffects"
    return shutil.copytree(BUILD / "share" / "specialeffects", folder)


@pytest.mark.parametrize("text", [*(info.id for info in specialeffects.effects()), "sepia+rain:drop-size=9"])
def test_gives_the_frames_of_the_program(text, clip, data, tmp_path):
    out = tmp_path / "out.y4m"
    command = [PROGRAM, "apply", "-e", text, "--data", data, "--seed", str(SEED), clip, out]
    subprocess.run(command, check=True, capture_output=True, timeout=100)
    size = HEIGHT * WIDTH * 3 // 2
    _, written = out.read_bytes().split(b"\n", 1)
    assert len(written) == COUNT * (6 + size)

    effect = specialeffects.Effect(text, seed=SEED, data_folder=data)
    for i in range(COUNT):
        frame = planes(HEIGHT, WIDTH, i)
        effect(frame, time=i / 30)
        start = i * (6 + size) + 6
        assert b"".join(p.tobytes() for p in frame) == written[start:start + size], f"frame {i}"
