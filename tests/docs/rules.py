"""What commands.py does with a command: patterns that it contains. What is in both lists is not run."""

# Blocks that hold no command of a shell, and those of Windows, which tests/windows/program.sh runs.
OTHER_LANGUAGES = ["", "bat", "c", "cmake", "cpp", "lua", "python", "ts"]

# What a page takes as given.
CLIP = "specialeffects apply -q --frames 10 -e sepia test: in.mp4"
# GStreamer makes its registry in the first run, and other plugins of the machine may complain then.
REGISTRY = "gst-inspect-1.0 > /dev/null 2>&1"
AT_HAND = {
    "README.md": f"{CLIP}; {REGISTRY}",
    "docs/frei0r.md": CLIP,
    "docs/gstreamer.md": REGISTRY,
    "docs/libsfx.md": "make install > /dev/null && cp docs/example_sfx.c program.c",
    "docs/python.md": CLIP,
}

RUN = [
    r"^specialeffects ",
    r"^ffmpeg ",
    r"^melt ",
    r"^gst-(launch|inspect)-1\.0 ",
    r"python3( |$)",
    r"^build/env/bin/",
    r"^cc ",
    r"^export ",
    r"^(sudo )?make (install-\S+|uninstall)\b",
    r"/check_kernels --filter Gauss$",
]

# Why not.
NOT_RUN = {
    "continuous integration runs it itself": [r"^make check$", r"^make check-(?!fuzz)", r"/drawing_tests$"],
    "continuous integration runs it for a shorter time": [r"^make check-fuzz "],
    "tools/bare_machine.sh runs it": [r"^make demo$"],
    "tests/packages runs it": [r"^make packages$", r"^sudo apt install "],
    "tests/layout/new_effect.sh runs it": [
        r"^tools/new_effect.sh ",
        r"^cmake --preset release -DSE_BUILD_TESTS=ON$",
        r"^cmake --build --preset release --target drawing_tests ",
        r"^build/release/tests/update_goldens ",
        r"^ctest --preset release ",
    ],
    "check-sanitize runs the same": [r"^cmake --preset sanitize "],
    "check-arm64 builds the same": [r"^make arm64$"],
    "check-windows builds the same": [r"^make windows$"],
    "check-web begins with it": [r"^make web$", r"^cmake --preset wasm && "],
    "web/package/tests runs the same": [
        r"^make && node web/package/scripts/generate.mjs ",
        r"^cp -r web/sample ",
        r"^npm install .*/specialeffects-",
        r"^npx vite$",
    ],
    "web/page/tests starts the same server": [r"^make serve$"],
    "tests/bridges/gstreamer/virtual_camera.sh runs it, with a PipeWire of its own": [r" pipewire"],
    "tests/bridges/python runs it, with a camera of its own": [r"/virtual_camera\.py"],
    "needs a camera": [r"^specialeffects cameras$"],
    "needs a kernel module": [r" modprobe ", r"/dev/video9"],
    "changes the system": [r"^sudo ldconfig$"],
    "measures, which takes a quiet machine": [r"\bbench", r"--bench", r"-DSE_BUILD_BENCH=ON", r"/memory\.mjs "],
    "runs other packages": [r"--prefix build/peers"],
    "shows how another program crashes": [r"! rippletv !", r"=rgbparade "],
}

# For what a test machine lacks: a camera, a window, a person.
STAND_INS = {
    r"/usr/local": "$DESTDIR/usr/local",
    r"/dev/video0": "--duration 1 test:",
    r"ffplay -": "ffmpeg -i - -f null -",
    r"v4l2src": "videotestsrc num-buffers=30 is-live=true",
    r"autovideosink": "fakesink silent=true",
    r"gstreamer_control\.py$": "gstreamer_control.py 'videotestsrc num-buffers=30 is-live=true' 'fakesink silent=true'",
    r"python3$": "python3 -c 'import specialeffects; specialeffects.effects()'",
}

# Must not say a word on stderr.
QUIET = [r"^specialeffects ", r"^gst-", r"^python3 docs/"]

# What a page's commands have made.
MADE = {
    "docs/gstreamer.md": [
        "[ $(ffprobe -v error -count_packets -select_streams v -show_entries stream=nb_read_packets -of csv=p=0"
        " film.webm) -eq 50 ]",
        "[ $(ffmpeg -i film.webm -map a -f s16le - | wc -c) -gt 80000 ]",
        "[ $(ffprobe -v error -show_entries stream=width,height -of csv=p=0 effects.jpg) = 960,240 ]",
    ],
    "docs/python.md": ["build/env/bin/python -c 'import specialeffects; assert len(specialeffects.effects()) == 63'"],
}
