#!/usr/bin/env python3
"""Times effects beside the filters of FFmpeg, frei0r and GStreamer that come closest to them.

    bench/bench_peers.py BENCH_EFFECTS [--size WxH] [--frames N]

Prints the versions and a table. BENCH_EFFECTS is the benchmark of the effects, which runs in between, so that all are
measured under the same load. A filter's time is the processor time of a pipeline with it less that of the same pipeline
without it, for a frame, on one thread, the median of three; the frames repeat one picture (ten pictures for FFmpeg,
which is also the host of frei0r) in a format that the filter takes, so that no conversion is counted. The memcpy is
that of a planar 4:2:0 frame, the median of all that BENCH_EFFECTS reports. What a program lacks is left out.
"""

import argparse
import csv
import datetime
import io
import re
import resource
import shutil
import statistics
import subprocess
import sys
from collections.abc import Sequence
from dataclasses import dataclass

SEPIA = ".393:.769:.189:0:.349:.686:.168:0:.272:.534:.131:0"


@dataclass(frozen=True)
class Peer:
    """An effect's number and name, as bench_effects filters them, and a filter that does something like it."""

    effect: str
    program: str
    format: str
    filter: str


PEERS = (
    Peer("63 Sepia", "FFmpeg", "gbrp", f"colorchannelmixer={SEPIA}"),
    Peer("62 Gray Scale", "FFmpeg", "yuv420p", "hue=s=0"),
    Peer("59 X-Ray", "FFmpeg", "yuv420p", "negate"),
    Peer("15 Chalk", "FFmpeg", "yuv420p", "median=radius=2:planes=1"),
    Peer("48 Colored Pencil", "FFmpeg", "yuv420p", "avgblur=sizeX=2:planes=1"),
    Peer("11 Line Art", "FFmpeg", "yuv420p", "sobel=planes=1"),
    Peer("14 Neonize", "FFmpeg", "gray", "edgedetect=mode=wires"),
    Peer("21 Fire", "FFmpeg", "yuv420p", "pseudocolor=preset=inferno"),
    Peer("45 Motion Blur - Ghost", "FFmpeg", "yuv420p", "tmix=frames=4"),
    Peer("29 Antiquated Movie", "FFmpeg", "yuv420p", "noise=alls=20:allf=t,vignette"),
    Peer("49 Spot Light", "FFmpeg", "yuv420p", "vignette"),
    Peer("55 Fish Eye", "FFmpeg", "yuv420p", "lenscorrection=k1=-0.2:k2=-0.05"),
    Peer("13 Tiled Up", "FFmpeg", "yuv420p", "pixelize=w=16:h=16"),
    Peer("63 Sepia", "frei0r", "rgba", "colorize"),
    Peer("62 Gray Scale", "frei0r", "rgba", "saturat0r:0"),
    Peer("59 X-Ray", "frei0r", "rgba", "invert0r"),
    Peer("16 Chalk", "frei0r", "rgba", "cartoon"),
    Peer("11 Line Art", "frei0r", "rgba", "sobel"),
    Peer("14 Neonize", "frei0r", "rgba", "edgeglow"),
    Peer("21 Fire", "frei0r", "rgba", "colortap"),
    Peer("45 Motion Blur - Ghost", "frei0r", "rgba", "baltan"),
    Peer("49 Spot Light", "frei0r", "rgba", "vignette"),
    Peer("55 Fish Eye", "frei0r", "rgba", "defish0r"),
    Peer("13 Tiled Up", "frei0r", "rgba", "pixeliz0r"),
    Peer("18 Liquefy", "frei0r", "rgba", "distort0r"),
    Peer("58 Time Distortion", "frei0r", "rgba", "nervous"),
    Peer("52 Quark", "GStreamer", "BGRx", "quarktv"),
    Peer("32 Rain Drops", "GStreamer", "BGRx", "rippletv"),
    Peer("18 Liquefy", "GStreamer", "BGRx", "warptv"),
    Peer("11 Line Art", "GStreamer", "BGRx", "edgetv"),
    Peer("29 Antiquated Movie", "GStreamer", "BGRx", "agingtv"),
    Peer("45 Motion Blur - Ghost", "GStreamer", "BGRx", "streaktv"),
    Peer("62 Gray Scale", "GStreamer", "I420", "videobalance saturation=0"),
    Peer("63 Sepia", "GStreamer", "AYUV", "coloreffects preset=sepia"),
    Peer("59 X-Ray", "GStreamer", "AYUV", "coloreffects preset=xray"),
    Peer("5 Chrome", "GStreamer", "BGRx", "chromium"),
    Peer("61 Bulge", "GStreamer", "AYUV", "bulge"),
    Peer("55 Fish Eye", "GStreamer", "AYUV", "fisheye"),
    Peer("25 Twirl", "GStreamer", "AYUV", "twirl"),
    Peer("30 Hallway Vision", "GStreamer", "AYUV", "tunnel"),
)


def processor_seconds(command: Sequence[str]) -> float | None:
    """User time of a command; None where it fails, as it does when a filter is missing."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    result = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before if result.returncode == 0 else None


def command_of(peer: Peer, size: str, frames: int, with_filter: bool) -> list[str]:
    """The pipeline of a peer, with its filter or without it."""
    if peer.program in ("FFmpeg", "frei0r"):
        graph = f"testsrc2=size={size}:rate=25,format={peer.format},loop=-1:10"
        if with_filter:
            graph += f",frei0r={peer.filter}" if peer.program == "frei0r" else f",{peer.filter}"
        return ["ffmpeg", "-nostdin", "-v", "error", "-filter_threads", "1", "-filter_complex_threads", "1",
                "-f", "lavfi", "-i", graph, "-frames:v", str(frames), "-pix_fmt", peer.format, "-f", "null", "-"]
    width, height = size.split("x")
    caps = f"video/x-raw,format={peer.format},width={width},height={height},framerate=25/1"
    filters = ["!", *peer.filter.split()] if with_filter else []
    return ["gst-launch-1.0", "-q", "videotestsrc", "num-buffers=1", "!", caps, "!", "imagefreeze",
            f"num-buffers={frames}", *filters, "!", "fakesink", "sync=false"]


def peer_milliseconds(peer: Peer, size: str, frames: int) -> float | None:
    """Median of three."""
    times = []
    for _ in range(3):
        filtered = processor_seconds(command_of(peer, size, frames, True))
        bare = processor_seconds(command_of(peer, size, frames, False))
        if filtered is None or bare is None:
            return None
        times.append((filtered - bare) / frames * 1e3)
    return statistics.median(times)


def effect_milliseconds(bench: str, effect: str, size: str) -> tuple[float, float]:
    """Milliseconds of an effect, and of a memcpy of the frame."""
    printed = subprocess.run([bench, "--size", size, "--filter", effect, "--seconds", "0.1", "--csv"],
                             capture_output=True, text=True, check=True).stdout
    row = next(csv.DictReader(io.StringIO(printed)))
    return float(row["ms"]), float(row["ms"]) / float(row["x_memcpy"])


def first_line(*command: str) -> str:
    """What a command prints first; "" where there is no such command."""
    if shutil.which(command[0]) is None:
        return ""
    return subprocess.run(command, capture_output=True, text=True, check=False).stdout.partition("\n")[0]


def measured_on() -> str:
    """The processor, and the versions of the programs."""
    processor = first_line("sh", "-c", "lscpu | sed -n 's/^Model name: *//p'")
    ffmpeg = first_line("ffmpeg", "-version").split(" Copyright")[0].replace("ffmpeg version", "FFmpeg")
    gstreamer = first_line("gst-launch-1.0", "--gst-version")
    frei0r = first_line("dpkg-query", "-W", "-f", "frei0r-plugins ${Version}", "frei0r-plugins")
    names = ", ".join(name for name in (ffmpeg, gstreamer, frei0r) if name)
    return f"Measured on one thread of: {processor}, on {datetime.date.today()}. {names}."


def peer_name(peer: Peer) -> str:
    """The program, and its filters."""
    filters = peer.filter.split(",") if peer.program == "FFmpeg" else [peer.filter]
    return f"{peer.program} " + " and ".join(f"`{re.split('[=: ]', name)[0]}`" for name in filters)


def main() -> int:
    """Prints the table."""
    parser = argparse.ArgumentParser(description="Times effects beside filters of FFmpeg, frei0r and GStreamer.")
    parser.add_argument("bench", metavar="BENCH_EFFECTS")
    parser.add_argument("--size", default="1920x1080")
    parser.add_argument("--frames", type=int, default=20)
    options = parser.parse_args()
    rows, copies = [], []
    for peer in PEERS:
        milliseconds = peer_milliseconds(peer, options.size, options.frames)
        if milliseconds is None:
            print(f"bench_peers: {peer.program} does not run {peer.filter}", file=sys.stderr)
            continue
        own, copy = effect_milliseconds(options.bench, peer.effect, options.size)
        rows.append((peer, own, milliseconds))
        copies.append(copy)
    if not rows:
        return 1
    copy = statistics.median(copies)
    print(f"{measured_on()}\nA memcpy of the frame takes {copy:.3f} ms.\n")
    print(f"| effect | {options.size} ms | x memcpy | its peer | ms | x memcpy | peer / effect |")
    print("|---|---|---|---|---|---|---|")
    for peer, own, milliseconds in rows:
        ratio = f"{milliseconds / own:.1f}" if milliseconds / own < 10 else f"{milliseconds / own:.0f}"
        print(f"| {peer.effect} | {own:.2f} | {own / copy:.1f} | {peer_name(peer)} | {milliseconds:.2f} "
              f"| {milliseconds / copy:.1f} | {ratio} |")
    return 0


if __name__ == "__main__":
    sys.exit(main())
