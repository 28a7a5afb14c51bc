"""Moves a setting of an effect with the stream, and another by hand, while a pipeline plays.

    python3 docs/gstreamer_control.py [SOURCE [SINK]]

SOURCE and SINK are parts of a pipeline, as for gst-launch-1.0; by default a camera and a window.
"""

import sys

import gi

gi.require_version("Gst", "1.0")
gi.require_version("GstController", "1.0")
from gi.repository import GLib, Gst, GstController  # noqa: E402


def make_pipeline(source: str, sink: str) -> Gst.Pipeline:
    return Gst.parse_launch(
        f"{source} ! videoconvert ! sfx-rain name=rain ! sfx-tiled-up name=tiles ! videoconvert ! {sink}"
    )


def move_with_the_stream(element: Gst.Element, name: str, values: dict[int, float]) -> None:
    """Interpolates a property. `values` has stream time in seconds and 0 to 1 for the least to the largest value."""
    source = GstController.InterpolationControlSource(mode=GstController.InterpolationMode.LINEAR)
    for seconds, value in values.items():
        source.set(seconds * Gst.SECOND, value)
    element.add_control_binding(GstController.DirectControlBinding.new(element, name, source))


def main(source: str = "v4l2src", sink: str = "autovideosink") -> int:
    Gst.init(None)
    pipeline = make_pipeline(source, sink)
    rain, tiles = pipeline.get_by_name("rain"), pipeline.get_by_name("tiles")

    # Drops grow for ten seconds.
    move_with_the_stream(rain, "drop-size", {0: 0.0, 10: 1.0})

    # Every second the other way round.
    def switch_tiles() -> bool:
        tiles.set_property("enabled", not tiles.get_property("enabled"))
        print(f"drop-size {rain.get_property('drop-size')}, tiles {tiles.get_property('enabled')}")
        return True

    GLib.timeout_add_seconds(1, switch_tiles)

    loop, result = GLib.MainLoop(), 0

    def on_message(_bus: Gst.Bus, message: Gst.Message) -> None:
        nonlocal result
        if message.type == Gst.MessageType.ERROR:
            print(message.parse_error()[0].message, file=sys.stderr)
            result = 1
        if message.type in (Gst.MessageType.EOS, Gst.MessageType.ERROR):
            loop.quit()

    bus = pipeline.get_bus()
    bus.add_signal_watch()
    bus.connect("message", on_message)
    pipeline.set_state(Gst.State.PLAYING)
    try:
        loop.run()
    except KeyboardInterrupt:
        pass
    pipeline.set_state(Gst.State.NULL)
    return result


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
