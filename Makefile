# The commands that people type. Each installs what is missing (Debian 12) and builds what it needs.
#
#   make demo     every effect over a clip: pictures, clips, a showreel and a page to look at them
#   make check    all tests: release build, sanitizers, and the same frames from both compilers
#   make bench    times of every primitive and effect
#   make build    the module and the host program in build/release
#   make lint     clang-format, clang-tidy and cppcheck over the whole tree
#   make install  PREFIX=/usr/local by default

PREFIX ?= /usr/local
JOBS := $(shell nproc)

# The generations below the newest that this machine has, which the release build chooses by itself.
PROCESSORS := baseline $(shell grep -qw avx512vbmi /proc/cpuinfo && echo avx2)

.PHONY: build demo check bench docs lint install setup clean

build: setup
	cmake --preset release
	cmake --build --preset release

demo: setup
	cmake --preset release
	cmake --build --preset release --target specialeffects specialeffects_program cascade
	tools/make_demo.sh build/release build/demo

# A suite of tests: its preset, and options of ctest. Those that failed run once more, so that what they print
# stands at the end.
run_tests = ctest --preset $(1) -j $(JOBS) $(2) || { ctest --preset $(1) --rerun-failed; false; }

# Clang and the single processor generations run the golden frames alone: what they add is that they compile
# cleanly and compute the same.
check: setup
	cmake --preset clang -DSE_BUILD_BENCH=OFF
	cmake --build --preset clang
	$(call run_tests,clang,-R 'Golden|check_kernels')
	$(foreach processor,$(PROCESSORS),$(call check_processor,$(processor)))
	cmake --preset thread
	cmake --build --preset thread --target soak_tests
	$(call run_tests,thread,-R SoakThreads)
	cmake --preset sanitize
	cmake --build --preset sanitize
	$(call run_tests,sanitize)
	cmake --preset release
	cmake --build --preset release
	$(call run_tests,release)

define check_processor
	cmake --preset $(1) -DSE_BUILD_HOST=OFF -DSE_BUILD_BENCH=OFF
	cmake --build --preset $(1) --target golden_tests
	$(call run_tests,$(1),-R Golden)

endef

bench: setup
	cmake --preset release
	cmake --build --preset release --target bench_primitives bench_effects bench_faces
	build/release/bench/bench_primitives --benchmark_counters_tabular=true
	build/release/bench/bench_effects --benchmark_counters_tabular=true
	build/release/bench/bench_faces --benchmark_counters_tabular=true

# After `make demo`: a page for each effect, with its picture and its time.
docs: setup
	cmake --preset release
	cmake --build --preset release --target make_docs bench_effects specialeffects_program
	build/release/bench/bench_effects --benchmark_format=csv > build/effects.csv
	build/release/tools/make_docs build/release/host/specialeffects docs/texts.json build/demo build/effects.csv docs
	cp build/demo/contact-sheet.jpg docs/images/contact-sheet.jpg

# With the benchmarks, which `make check` leaves out of the same build.
lint:
	@tools/setup.sh clang-format clang-tidy cppcheck
	cmake --preset clang -DSE_BUILD_BENCH=ON
	git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format --dry-run --Werror
	run-clang-tidy -quiet -p build/clang -j $(JOBS) "$(CURDIR)/.*" > build/clang-tidy.txt 2> /dev/null || \
	    { grep -A3 'error:' build/clang-tidy.txt; false; }
	cppcheck --std=c++20 --library=googletest --enable=warning,performance,portability --quiet -I . -j $(JOBS) \
	    --suppressions-list=.cppcheck-suppressions --error-exitcode=1 \
	    framework imaging effects facetrack host tools bench tests

install: build
	cmake --install build/release --prefix $(PREFIX)

setup:
	@tools/setup.sh

clean:
	rm -rf build
