#!/usr/bin/env python3
"""Times effects beside the filters of FFmpeg and the elements of GStreamer that come closest to them.

    bench/bench_peers.py BENCH_EFFECTS [--size WxH] [--frames N]

Prints a table. BENCH_EFFECTS is the benchmark of the effects, which runs in between, so that all are measured under the
same load. A filter's time is the processor time of a pipeline with it less that of the same pipeline without it, for a
frame, on one thread; the frames repeat one picture (ten pictures for FFmpeg) in a format that the filter takes, so that
no conversion is counted. What a program lacks is left out.
"""

import argparse
import csv
import io
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
    Peer("14 Neonize", "FFmpeg", "yuv420p", "edgedetect=mode=wires:planes=y"),
    Peer("21 Fire", "FFmpeg", "yuv420p", "pseudocolor=preset=inferno"),
    Peer("45 Motion Blur - Ghost", "FFmpeg", "yuv420p", "tmix=frames=4"),
    Peer("29 Antiquated Movie", "FFmpeg", "yuv420p", "noise=alls=20:allf=t,vignette"),
    Peer("49 Spot Light", "FFmpeg", "yuv420p", "vignette"),
    Peer("55 Fish Eye", "FFmpeg", "yuv420p", "lenscorrection=k1=-0.2:k2=-0.05"),
    Peer("13 Tiled Up", "FFmpeg", "yuv420p", "pixelize=w=16:h=16"),
    Peer("52 Quark", "GStreamer", "BGRx", "quarktv"),
    Peer("32 Rain Drops", "GStreamer", "BGRx", "rippletv"),
    Peer("18 Liquefy", "GStreamer", "BGRx", "warptv"),
    Peer("11 Line Art", "GStreamer", "BGRx", "edgetv"),
    Peer("29 Antiquated Movie", "GStreamer", "BGRx", "agingtv"),
    Peer("45 Motion Blur - Ghost", "GStreamer", "BGRx", "streaktv"),
    Peer("62 Gray Scale", "GStreamer", "I420", "videobalance saturation=0"),
)


def processor_seconds(command: Sequence[str]) -> float | None:
    """User time of a command; None where it fails, as it does when a filter is missing."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    result = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before if result.returncode == 0 else None


def command_of(peer: Peer, size: str, frames: int, with_filter: bool) -> list[str]:
    """The pipeline of a peer, with its filter or without it."""
    if peer.program == "FFmpeg":
        graph = f"testsrc2=size={size}:rate=25,format={peer.format},loop=-1:10"
        graph += f",{peer.filter}" if with_filter else ""
        return ["ffmpeg", "-nostdin", "-v", "error", "-filter_threads", "1", "-filter_complex_threads", "1",
                "-f", "lavfi", "-i", graph, "-frames:v", str(frames), "-f", "null", "-"]
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


def effect_row(bench: str, effect: str, size: str) -> tuple[float, float]:
    """Milliseconds of an effect, and how many times those of a memcpy of the frame."""
    printed = subprocess.run([bench, "--size", size, "--filter", effect, "--seconds", "0.1", "--csv"],
                             capture_output=True, text=True, check=True).stdout
    row = next(csv.DictReader(io.StringIO(printed)))
    return float(row["ms"]), float(row["x_memcpy"])


def main() -> int:
    """Prints the table."""
    parser = argparse.ArgumentParser(description="Times effects beside filters of FFmpeg and GStreamer.")
    parser.add_argument("bench", metavar="BENCH_EFFECTS")
    parser.add_argument("--size", default="1920x1080")
    parser.add_argument("--frames", type=int, default=60)
    options = parser.parse_args()
    for program in ("ffmpeg", "gst-launch-1.0"):
        if shutil.which(program) is None:
            print(f"bench_peers: {program} is not installed", file=sys.stderr)
    print(f"| effect | {options.size} ms | x memcpy | its peer | ms | x memcpy |\n|---|---|---|---|---|---|")
    for peer in PEERS:
        milliseconds = peer_milliseconds(peer, options.size, options.frames)
        if milliseconds is None:
            print(f"bench_peers: {peer.program} does not run {peer.filter}", file=sys.stderr)
            continue
        own, ratio = effect_row(options.bench, peer.effect, options.size)
        name = f"{peer.program} `{peer.filter.split('=')[0].split()[0]}`"
        if "," in peer.filter:
            name += " and `" + peer.filter.split(",")[1] + "`"
        print(f"| {peer.effect} | {own:.2f} | {ratio:.1f} | {name} | {milliseconds:.2f} "
              f"| {milliseconds / own * ratio:.1f} |", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
