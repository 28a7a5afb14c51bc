# `make help` lists the commands. Each installs the packages it needs (Debian 12) and builds what it depends on.

PREFIX ?= /usr/local
JOBS ?= $(shell nproc)
RELEASE := build/release
INSTALLED ?= build/installed.txt
# Copies of the tree share what ccache keeps.
export CCACHE_BASEDIR ?= $(CURDIR)

# The parts of `make check-all`. A part is one word here and its rule check-WORD below.
PARTS ?= install clang sanitize thread fuzz slow gstreamer frei0r python arm64 windows obs web packages docs coverage

.PHONY: build arm64 windows install install-gstreamer install-frei0r install-obs uninstall packages dist demo check check-all bench bench-peers docs lint help clean $(PARTS:%=check-%)

## build      the library and the program, in build/release
build:
	@tools/setup.sh build
	cmake --preset release -DCMAKE_INSTALL_PREFIX=$(PREFIX)
	cmake --build --preset release --target product

# Adds a list of installed files to the one that `make uninstall` reads.
remember = touch $(INSTALLED) && awk '!seen[$$0]++' $(INSTALLED) $(RELEASE)/$(1) > $(INSTALLED).new && \
    mv $(INSTALLED).new $(INSTALLED)

## install    into PREFIX (/usr/local); DESTDIR=FOLDER puts that folder in front of it
install: build
	cmake --install $(RELEASE)
	$(call remember,install_manifest.txt)

## install-gstreamer  the same and the GStreamer plugin
install-gstreamer: install
	@tools/setup.sh build gstreamer
	cmake --preset release -DSE_BUILD_GSTREAMER=ON
	cmake --build --preset release --target gstspecialeffects
	cmake --install $(RELEASE) --component gstreamer
	$(call remember,install_manifest_gstreamer.txt)

## install-frei0r  the same and the frei0r plugins
install-frei0r: install
	@tools/setup.sh build frei0r
	cmake --preset release -DSE_BUILD_FREI0R=ON
	cmake --build --preset release --target frei0r_plugins
	cmake --install $(RELEASE) --component frei0r
	$(call remember,install_manifest_frei0r.txt)

## install-obs  the plugin for OBS Studio, for the user who calls this; needs no rights
OBS_PLUGINS ?= $(or $(XDG_CONFIG_HOME),$(HOME)/.config)/obs-studio/plugins
install-obs:
	@tools/setup.sh build obs
	cmake --preset release -DSE_BUILD_OBS=ON
	cmake --build --preset release --target product obs_plugin
	cmake --install $(RELEASE) --component obs-user --prefix $(OBS_PLUGINS)/specialeffects
	$(call remember,install_manifest_obs-user.txt)

## uninstall  what the last `make install` installed, with the same DESTDIR
uninstall:
	@tools/uninstall.sh $(INSTALLED)

## packages   the Debian packages, in build/packages
packages:
	@tools/setup.sh build gstreamer frei0r obs packages
	tools/make_packages.sh build/packages

## dist       the sources as a tarball that builds on its own, in build
dist:
	@tools/setup.sh dist
	tools/make_dist.sh build

## demo       every effect over a clip: pictures, clips, a showreel and build/demo/index.html
demo: build
	@tools/setup.sh demo
	tools/make_demo.sh $(RELEASE) build/demo
	@echo "Live, in a browser: make web && make serve"

## arm64      both libraries and the tests for 64-bit ARM, cross-built, in build/arm64
arm64:
	@tools/setup.sh arm64
	$(call build_tests,arm64,all)

# Configures the Windows build with the face cascade, which a program of this machine makes.
configure_windows = cmake --preset release && cmake --build --preset release --target cascade && \
    cmake --preset windows -DSE_CASCADE_FOLDER=$(CURDIR)/$(RELEASE)/share/specialeffects

## windows    both libraries and a program for 64-bit Windows, cross-built, in build/windows, and a zip of them
windows:
	@tools/setup.sh build windows
	$(call configure_windows)
	cmake --build --preset windows --target product
	tools/make_windows_zip.sh build/windows

# build_tests builds a preset's targets; run_tests runs its tests with options of ctest. Tests that fail have to pass in a
# second run, one at a time: a busy machine starts the programs late that some of them wait for.
build_tests = cmake --preset $(1) -DSE_BUILD_TESTS=ON && cmake --build --preset $(1) --target $(2)
run_tests = ctest --preset $(1) -j $(JOBS) $(2) || ctest --preset $(1) --rerun-failed

## check      the quick proof: all tests of the release build but the slow ones
check:
	@tools/setup.sh build check
	$(call build_tests,release,all)
	$(call run_tests,release,-LE slow)

## check-all  what takes longer; `make check-NAME` runs one part: $(PARTS)
check-all:
	@tools/check_all.sh $(PARTS)

# Installation into a folder, as a packager does it, and back.
check-install:
	tests/layout/make_install.sh

# The other compiler: no warning, the same frames and kernels.
check-clang:
	@tools/setup.sh build check clang
	$(call build_tests,clang,all)
	$(call run_tests,clang,-R 'Golden|check_kernels')

# Address and undefined-behaviour sanitizers.
check-sanitize:
	@tools/setup.sh build check
	$(call build_tests,sanitize,all)
	$(call run_tests,sanitize,-LE slow)

# All effects on many threads under the thread sanitizer, and libsfx's own threads.
check-thread:
	@tools/setup.sh build check clang
	$(call build_tests,thread,soak_tests sfx_tests)
	$(call run_tests,thread,-R '^(SoakThreads|Threads)')

# Guided fuzzing of the contract, of libsfx and of the files that it reads on every core, for so many seconds each, from
# the stored inputs. New inputs stay in build/fuzz/corpus.
FUZZ_SECONDS ?= 40
check-fuzz:
	@tools/setup.sh build check clang
	$(call build_tests,fuzz,fuzz_contract fuzz_sfx fuzz_files)
	$(call run_fuzz,contract,$(FUZZ_SECONDS))
	$(call run_fuzz,sfx,$(FUZZ_SECONDS))
	$(call run_fuzz,files,$(FUZZ_SECONDS))

define run_fuzz
	mkdir -p build/fuzz/corpus/$(1)
	cd build/fuzz && tests/fuzz/fuzz_$(1) -fork=$(JOBS) -max_total_time=$(2) corpus/$(1) \
	    $(CURDIR)/tests/fuzz/inputs/$(1)

endef

# Long runs and wide sweeps of the release build.
check-slow:
	@tools/setup.sh build check slow
	$(call build_tests,release,all)
	$(call run_tests,release,-L slow)

# The GStreamer plugin: its elements one by one, and in GStreamer's own programs.
check-gstreamer:
	@tools/setup.sh build check gstreamer check-gstreamer
	cmake --preset release -DSE_BUILD_TESTS=ON -DSE_BUILD_GSTREAMER=ON
	cmake --build --preset release --target gstreamer_tests product
	$(call run_tests,release,-L gstreamer)

# The frei0r plugins, in FFmpeg and MLT.
check-frei0r:
	@tools/setup.sh build check frei0r check-frei0r
	cmake --preset release -DSE_BUILD_TESTS=ON -DSE_BUILD_FREI0R=ON
	cmake --build --preset release --target frei0r_tests
	$(call run_tests,release,-L frei0r)

# The plugin for OBS Studio: its filters in a libobs, and in OBS itself.
check-obs:
	@tools/setup.sh build check obs check-obs
	cmake --preset release -DSE_BUILD_TESTS=ON -DSE_BUILD_OBS=ON
	cmake --build --preset release --target obs_tests cascade
	$(call run_tests,release,-L obs)

# The Python module: its tests and examples, its types, and its wheel.
check-python:
	@tools/setup.sh build check python
	cmake --preset release -DSE_BUILD_PYTHON=ON
	cmake --build --preset release --target product python_wheel
	LD_LIBRARY_PATH=$(CURDIR)/$(RELEASE) PYTHONPATH=$(CURDIR)/bridges/python PYTHONDONTWRITEBYTECODE=1 /usr/bin/python3 -m pytest \
	    -c bridges/python/pyproject.toml --rootdir tests/bridges/python tests/bridges/python

## web        libsfx for browsers and Node, the npm package and the page, in build/web
.PHONY: web
web serve check-web-%: export PATH := $(CURDIR)/build/node/bin:$(PATH)
web:
	@tools/setup.sh web
	cmake --preset wasm
	cmake --build --preset wasm
	cmake --preset wasm-baseline
	cmake --build --preset wasm-baseline
	@tools/setup.sh build web-page
	@tools/setup_node.sh
	cmake --preset release
	cmake --build --preset release --target cascade
	cd web/package && npm ci --no-audit --no-fund && \
	    npm run build $(CURDIR)/build/web/wasm $(CURDIR)/$(RELEASE)/share/specialeffects && \
	    npm pack --pack-destination $(CURDIR)/build/web
	cd web/page && npm ci --no-audit --no-fund
	node web/page/build.mjs build/web/wasm $(RELEASE)/share/specialeffects build/web/page

## serve      the page that `make web` has built, on http://127.0.0.1:8000 (PORT=8000)
PORT ?= 8000
.PHONY: serve
serve:
	@node web/page/serve.mjs build/web/page $(PORT)

# libsfx in WebAssembly: all of it below.
check-web: check-web-module check-web-package check-web-page

# The modules in Node: every effect's frames with vectors and without, the interface, memory, traps, size.
.PHONY: check-web-module
check-web-module: web
	cmake --preset wasm -DSE_BUILD_TESTS=ON
	cmake --build --preset wasm
	cmake --preset wasm-baseline -DSE_BUILD_TESTS=ON
	cmake --build --preset wasm-baseline
	node --test tests/web/golden.test.mjs tests/web/library.test.mjs

# The npm package: its types and style, frames in Node, and tracks in Chromium.
.PHONY: check-web-package
check-web-package: web
	@tools/setup.sh build check-web-page
	cmake --preset release
	cmake --build --preset release --target product
	cd web/package && npm run check && npm test

# The page: its types and style, and each feature in Chromium.
.PHONY: check-web-page
check-web-page: web
	@tools/setup.sh check-web-page
	cd web/page && npm run check && npm test

# Which lines run in quick tests, in build/coverage; fails where they are too few.
check-coverage:
	tools/coverage.sh

# The libraries on an emulated 64-bit ARM processor: golden frames of two sizes, kernels, the binary interface.
check-arm64:
	@tools/setup.sh arm64
	$(call build_tests,arm64,specialeffects sfx golden_tests check_kernels abi_host)
	$(call run_tests,arm64,-R 'GoldenWithLibrarysRand|check_kernels|abi|exports' -E sizes)

# The Windows build under Wine: golden frames, the contract from C and from a host of the other ABI, libsfx, what is
# Windows' own. Wine's first start makes its folder. On a busy machine Wine now and then ends a program whose checks have
# all passed as if it had been killed, so a failed test gets a second try.
check-windows:
	@tools/setup.sh build windows check-windows
	$(call configure_windows) -DSE_BUILD_TESTS=ON
	cmake --build --preset windows --target all
	tools/make_windows_zip.sh build/windows
	$(call run_tests,windows)

# The Debian packages in a bare Debian 12, and the tarball.
check-packages:
	@tools/setup.sh build gstreamer frei0r obs packages dist check-packages
	tests/packages/check.sh

# The commands of the documents.
check-docs:
	@tools/setup.sh build check gstreamer frei0r obs python check-gstreamer check-frei0r check-docs
	cmake --preset release -DSE_BUILD_TESTS=ON -DSE_BUILD_GSTREAMER=ON -DSE_BUILD_FREI0R=ON -DSE_BUILD_OBS=ON \
	    -DSE_BUILD_PYTHON=ON
	cmake --build --preset release --target product python_wheel check_kernels
	tests/docs/commands.py run $(RELEASE) build/check-docs

## long-NAME  one run for SECONDS (900): $(LONG)
LONG := lives frames contract sfx files media threads gstreamer obs page
SECONDS ?= 900
LIVES ?= 1000
FRAMES ?= 100000
.PHONY: $(LONG:%=long-%)

# Every effect created, configured and destroyed LIVES times; FRAMES frames of every effect. Both watch the memory.
long-lives long-frames:
	@tools/setup.sh build check
	$(call build_tests,release,soak_tests cascade)
	SE_SOAK_LIVES=$(LIVES) SE_SOAK_FRAMES=$(FRAMES) $(RELEASE)/tests/soak/soak_tests \
	    --gtest_filter=$(if $(filter %lives,$@),*LeaveNothingBehind*,*LongStream*)

# Guided fuzzing.
long-contract long-sfx: long-%:
	@tools/setup.sh build check clang
	$(call build_tests,fuzz,fuzz_$*)
	$(call run_fuzz,$*,$(SECONDS))

# Damaged files of each kind, for SECONDS each: those that libsfx reads, and the program's videos and pictures. There, a
# crash in FFmpeg's libraries does not end the run.
FILES ?= cascade settings bmp presets
MEDIA ?= mp4 mkv png jpg gif y4m
long-files:
	@tools/setup.sh build check clang
	$(call build_tests,fuzz,fuzz_files)
	$(foreach kind,$(FILES),$(call fuzz_kind,files,$(kind)))

long-media:
	@tools/setup.sh build check clang
	cmake --preset fuzz -DSE_BUILD_TESTS=ON -DSE_BUILD_HOST=ON
	cmake --build --preset fuzz --target fuzz_media
	$(foreach kind,$(MEDIA),$(call fuzz_kind,media,$(kind),-ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1))

define fuzz_kind
	mkdir -p build/fuzz/corpus/$(1)-$(2)
	cp tests/fuzz/inputs/$(1)/*.$(2) build/fuzz/corpus/$(1)-$(2)
	cd build/fuzz && tests/fuzz/fuzz_$(1) -fork=$(JOBS) -max_total_time=$(SECONDS) -rss_limit_mb=4096 -timeout=60 \
	    $(3) corpus/$(1)-$(2)

endef

# 24 effects at once on 8 threads, under the thread sanitizer.
long-threads:
	@tools/setup.sh build check clang
	$(call build_tests,thread,soak_tests)
	SE_SOAK_SECONDS=$(SECONDS) build/thread/tests/soak/soak_tests --gtest_filter=SoakThreads.*

# The bridges in their hosts, with another effect every second.
long-gstreamer:
	@tools/setup.sh build check gstreamer check-gstreamer
	cmake --preset release -DSE_BUILD_TESTS=ON -DSE_BUILD_GSTREAMER=ON
	cmake --build --preset release --target gstreamer_tests
	SE_SOAK_SECONDS=$(SECONDS) $(RELEASE)/tests/bridges/gstreamer/gstreamer_tests --gtest_filter=LongRun.*

long-obs:
	@tools/setup.sh build check obs check-obs
	cmake --preset release -DSE_BUILD_TESTS=ON -DSE_BUILD_OBS=ON
	cmake --build --preset release --target obs_tests cascade
	SE_SOAK_SECONDS=$(SECONDS) SE_OBS_RATE=15 LIBGL_ALWAYS_SOFTWARE=1 XDG_CACHE_HOME=$(CURDIR)/build/cache \
	    XDG_CONFIG_HOME=$(CURDIR)/build/config \
	    xvfb-run -a $(RELEASE)/tests/bridges/obs/obs_tests --gtest_filter=LongRun.*

long-page: export PATH := $(CURDIR)/build/node/bin:$(PATH)
long-page: web
	@tools/setup.sh check-web-page
	cd web/page && node tests/long-run.mjs $(SECONDS)

## bench      times of every primitive and effect, in build/bench/*.csv and docs/performance.md; about five minutes
bench:
	@tools/setup.sh build check bench
	cmake --preset release -DSE_BUILD_TESTS=ON -DSE_BUILD_BENCH=ON
	cmake --build --preset release --target check_kernels bench_effects bench_opencv
	mkdir -p build/bench
	$(RELEASE)/tests/check_kernels/check_kernels --bench --csv > build/bench/kernels.csv
	$(RELEASE)/bench/bench_opencv > build/bench/opencv.csv
	$(RELEASE)/bench/bench_effects --csv > build/bench/effects.csv
	tools/performance_page.sh build/bench docs/performance.md

## bench-peers  FFmpeg, frei0r and GStreamer beside the effects, timed and at odd sizes, in docs/comparison.md; three minutes
bench-peers:
	@tools/setup.sh build gstreamer frei0r bench bench-peers
	cmake --preset release -DSE_BUILD_BENCH=ON -DSE_BUILD_GSTREAMER=ON -DSE_BUILD_FREI0R=ON
	cmake --build --preset release --target bench_effects sfx gstspecialeffects frei0r_plugins
	mkdir -p build/bench
	bench/bench_peers.py $(RELEASE)/bench/bench_effects > build/bench/peers.md
	bench/peers_odd_sizes.py $(RELEASE) > build/bench/sizes.md
	tools/performance_page.sh build/bench docs/comparison.md

## docs       a page for each effect with its picture and its time, after `make demo`
docs: build
	cmake --preset release -DSE_BUILD_BENCH=ON
	cmake --build --preset release --target make_docs bench_effects
	$(RELEASE)/bench/bench_effects --csv --size 1280x720 > build/effects.csv
	$(RELEASE)/tools/make_docs . $(RELEASE)/share/specialeffects build/demo build/effects.csv docs
	cp build/demo/contact-sheet.jpg docs/images/contact-sheet.jpg

## lint       clang-format, clang-tidy, cppcheck, shellcheck and flake8 over the whole tree
lint:
	@tools/setup.sh build lint
	cmake --preset clang -DSE_BUILD_TESTS=ON -DSE_BUILD_BENCH=ON
	git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format --dry-run --Werror
	git ls-files '*.sh' .ci/run | xargs shellcheck -x -P SCRIPTDIR
	git ls-files '*.py' | xargs flake8
	run-clang-tidy -quiet -p build/clang -j $(JOBS) "$(CURDIR)/.*" > build/clang-tidy.txt 2> /dev/null || \
	    { grep -A3 'error:' build/clang-tidy.txt; false; }
	cppcheck --std=c++20 --library=googletest --enable=warning,performance,portability --quiet -I . -j $(JOBS) \
	    --suppressions-list=.cppcheck-suppressions --error-exitcode=1 \
	    framework imaging effects facetrack sfx host bridges tools bench tests

## clean      removes build/
clean:
	rm -rf build

help:
	@echo "make TARGET, where TARGET is"
	@sed -n 's/^## /  /p' $(MAKEFILE_LIST) | sed 's/[$$](PARTS)/$(PARTS)/; s/[$$](LONG)/$(LONG)/'
