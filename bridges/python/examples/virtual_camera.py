"""A camera with an effect as a camera for other programs: virtual_camera.py EFFECTS [SECONDS].

Needs pyvirtualcam and, on Linux, a v4l2loopback device.
"""

import itertools
import sys

import cv2
import pyvirtualcam

import specialeffects


def main(effects: str, seconds: str = "inf") -> None:
    fx = specialeffects.Effect(effects)
    camera = cv2.VideoCapture(0)
    there, frame = camera.read()
    if not there:
        sys.exit("there is no camera")
    height, width = frame.shape[:2]
    fx.prepare(width, height)
    with pyvirtualcam.Camera(width, height, fps=30, fmt=pyvirtualcam.PixelFormat.BGR) as output:
        for count in itertools.count():
            there, frame = camera.read()
            if not there or count / output.fps >= float(seconds):
                break
            output.send(fx(frame))
            output.sleep_until_next_frame()


if __name__ == "__main__":
    main(*sys.argv[1:])
