"""The examples run as they are."""

import os
import subprocess
import sys

import cv2
import numpy
import pytest

import specialeffects
from conftest import MODULE, ROOT, noise

EXAMPLES = MODULE / "examples"
FAKE_CAMERA = '''
"""Keeps what is sent to the camera in a file."""
class PixelFormat:
    BGR = "bgr"
class Camera:
    def __init__(self, width, height, fps, fmt):
        assert fmt == PixelFormat.BGR
        self.shape, self.fps = (height, width, 3), fps
    def __enter__(self):
        self.file = open("sent", "wb")
        return self
    def __exit__(self, *_):
        self.file.close()
    def send(self, frame):
        assert frame.shape == self.shape and frame.dtype == "uint8"
        self.file.write(frame.tobytes())
    def sleep_until_next_frame(self):
        pass
'''
# OpenCV with a camera that shows a file.
FAKE_CV2 = '''
import os, sys
sys.path.remove(os.path.dirname(__file__))
del sys.modules["cv2"]
import cv2
real = cv2.VideoCapture
cv2.VideoCapture = lambda source: real("clip.avi" if source == 0 else source)
sys.modules["cv2"] = cv2
'''


def example(name, *arguments, folder, path=()):
    environment = os.environ | {"MPLBACKEND": "Agg", "MPLCONFIGDIR": str(folder)}
    environment["PYTHONPATH"] = os.pathsep.join([*map(str, path), os.environ.get("PYTHONPATH", "")])
    command = [sys.executable, EXAMPLES / name, *map(str, arguments)]
    done = subprocess.run(command, cwd=folder, env=environment, capture_output=True, text=True, timeout=200)
    assert done.returncode == 0, done.stderr
    return done.stdout


@pytest.fixture
def clip(tmp_path):
    """A video of ten frames, and the frames that OpenCV decodes from it."""
    path = str(tmp_path / "clip.avi")
    writer = cv2.VideoWriter(path, cv2.VideoWriter_fourcc(*"MJPG"), 25, (64, 48))
    for i in range(10):
        writer.write(cv2.blur(noise(48, 64, 3, seed=i), (9, 9)))
    writer.release()
    video, frames = cv2.VideoCapture(path), []
    while (read := video.read())[0]:
        frames.append(read[1])
    assert len(frames) == 10
    return path, frames


def test_video_file(clip, tmp_path):
    path, frames = clip
    output = example("video_file.py", path, "out.avi", "sepia+rain:drop-size=9", folder=tmp_path)
    assert output == "10 frames, sepia+rain:drop-size=9\n"
    video, effect = cv2.VideoCapture(str(tmp_path / "out.avi")), specialeffects.Effect("sepia+rain:drop-size=9")
    for i, frame in enumerate(frames):
        there, written = video.read()
        expected = effect(frame, time=i / 25)
        assert there and numpy.abs(written.astype(int) - expected).mean() < 6  # JPEG
    assert not video.read()[0]


def test_virtual_camera(clip, tmp_path):
    fakes = [tmp_path / "camera", tmp_path / "cv2"]
    for fake, name, text in zip(fakes, ("pyvirtualcam.py", "cv2.py"), (FAKE_CAMERA, FAKE_CV2)):
        fake.mkdir()
        (fake / name).write_text(text)
    example("virtual_camera.py", "rain", folder=tmp_path, path=fakes)
    effect = specialeffects.Effect("rain")
    expected = b"".join(effect(frame).tobytes() for frame in clip[1][1:])
    assert (tmp_path / "sent").read_bytes() == expected


def test_contact_sheet(tmp_path):
    picture = cv2.resize(cv2.imread(str(ROOT / "demo" / "portrait.jpg")), (96, 72))
    cv2.imwrite(str(tmp_path / "small.jpg"), picture)
    example("contact_sheet.py", "small.jpg", "sheet.png", folder=tmp_path)
    sheet = cv2.imread(str(tmp_path / "sheet.png"))
    assert sheet.shape == (840, 1080, 3)
    assert len(numpy.unique(sheet.reshape(-1, 3), axis=0)) > 1000


def test_notebook(tmp_path):
    output = example("notebook.py", folder=tmp_path)
    assert len(output.splitlines()) == len(specialeffects.effects())
    assert "drop_period, drop_size" in output
