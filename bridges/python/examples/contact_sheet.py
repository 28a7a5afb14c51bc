"""Draws every effect on one picture with matplotlib: contact_sheet.py PICTURE OUT."""

import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

import specialeffects

FRAMES = 10  # what moves or remembers shows itself after some frames
COLUMNS = 9


def main(source: str, target: str) -> None:
    picture = plt.imread(source)[:, :, :3].copy()  # RGB
    effects = specialeffects.effects()
    figure, axes = plt.subplots(-(-len(effects) // COLUMNS), COLUMNS, figsize=(18, 14))
    for axis in axes.flat:
        axis.axis("off")
    for axis, info in zip(axes.flat, effects):
        fx = specialeffects.Effect(info.id)
        for _ in range(FRAMES):
            frame = fx(picture.copy(), format="rgb24")
        axis.imshow(frame)
        axis.set_title(info.title, fontsize=8)
    figure.savefig(target, dpi=60)


if __name__ == "__main__":
    main(*sys.argv[1:])
