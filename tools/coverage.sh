#!/bin/sh
# Counts which lines of the module, libsfx, the program and the bridges run in quick tests:
#
#   tools/coverage.sh
#
# Prints a table and fails when a folder is below its bar (tools/coverage_table.py). The lines that did not run are in
# build/coverage/uncovered.txt. A bridge whose packages cannot be installed is left out; where CI is set, that fails.
set -eu
cd "$(dirname "$0")/.."
build=$PWD/build/coverage

tools/setup.sh build check clang
# Programs and libraries that count. libsfx has all of the module, and the tests have what is in its headers.
objects="libsfx.so host/specialeffects tests/host/host_tests
    tests/framework_tests tests/imaging_tests tests/facetrack_tests tests/sfx/sfx_tests"
folders="framework imaging effects facetrack sfx host"
options=""
python=""
for bridge in gstreamer frei0r obs python; do
    if ! tools/setup.sh "$bridge" "check-$bridge"; then
        [ -z "${CI:-}" ] || exit 1
        echo "bridges/$bridge is left out"
        continue
    fi
    folders="$folders bridges/$bridge"
    case $bridge in
        gstreamer)
            options="$options -DSE_BUILD_GSTREAMER=ON"
            objects="$objects gstreamer-1.0/libgstspecialeffects.so"
            ;;
        frei0r)
            # All plugins have the same code.
            options="$options -DSE_BUILD_FREI0R=ON"
            objects="$objects frei0r-1/sfx_sepia.so bridges/frei0r/make_editor_files"
            ;;
        obs)
            options="$options -DSE_BUILD_OBS=ON"
            objects="$objects obs-plugins/specialeffects/bin/64bit/specialeffects.so"
            ;;
        python) python=yes ;;
    esac
done

rm -rf "$build/counts" "$build/editors"  # the build writes the latter anew
export LLVM_PROFILE_FILE="$build/counts/%4m.profraw"
# shellcheck disable=SC2086  # a list of words is meant
cmake --preset coverage $options
cmake --build --preset coverage

# Left out are tests of files, of other programs and of what others run as well, and those in which a limit on the size
# of files holds for the counts, too.
export GTEST_FILTER='-*_baseline:*GoldenWithLibrarysRand*:*EveryEffect*:*RandomTexts*:Threads.*'
ctest --preset coverage -j "${JOBS:-$(nproc)}" -LE slow -E \
    '^(docs|layout|soak|fuzz|abi\.(large_sizes|threads)|gstreamer\.[a-z]|frei0r\.hosts|obs\.program)|OlderOutputSurvivesAFailure|FileThatMayNotGrow'
set --
if [ -n "$python" ]; then
    export COVERAGE_FILE="$build/python.counts" SE_BUILD_DIR="$build" LD_LIBRARY_PATH="$build" PYTHONDONTWRITEBYTECODE=1
    PYTHONPATH=bridges/python /usr/bin/python3 -m coverage run --source=bridges/python/specialeffects -m pytest -q \
        -c bridges/python/pyproject.toml --rootdir tests/bridges/python tests/bridges/python \
        --ignore-glob='*/test_wheel.py' --ignore-glob='*/test_types.py' --ignore-glob='*/test_examples.py'
    /usr/bin/python3 -m coverage lcov -q -o "$build/python.lcov"
    set -- "$build/python.lcov"
fi

# One trace for each object: together, a copy of a function that is never called could hide one that is.
llvm-profdata merge -o "$build/counts.profdata" "$build"/counts/*.profraw
for object in $objects; do
    trace=$build/$(basename "$object").lcov
    (cd "$build" && llvm-cov export -format=lcov -instr-profile counts.profdata "$object") > "$trace"
    set -- "$@" "$trace"
done

# shellcheck disable=SC2046,SC2086  # lists of words are meant
tools/coverage_table.py $(printf -- '--folder %s ' $folders) "$build/uncovered.txt" "$@"
