"""Applies effects to a video file with OpenCV: video_file.py IN OUT EFFECTS, where EFFECTS is "sepia+rain"."""

import sys

import cv2

import specialeffects


def main(source: str, target: str, effects: str) -> None:
    fx = specialeffects.Effect(effects)
    video = cv2.VideoCapture(source)
    rate = video.get(cv2.CAP_PROP_FPS)
    size = (int(video.get(cv2.CAP_PROP_FRAME_WIDTH)), int(video.get(cv2.CAP_PROP_FRAME_HEIGHT)))
    output = cv2.VideoWriter(target, cv2.VideoWriter_fourcc(*"MJPG"), rate, size)
    count = 0
    while True:
        there, frame = video.read()
        if not there:
            break
        output.write(fx(frame, time=count / rate))
        count += 1
    output.release()
    print(f"{count} frames, {fx}")


if __name__ == "__main__":
    main(*sys.argv[1:])
