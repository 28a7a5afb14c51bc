#!/bin/bash
# Runs `make check-PART` for each part named, as the tests of one ctest run, which ends with a summary:
#
#   tools/check_all.sh PART...
#
# The output of a part is kept in build/check-all/PART.log. The ends of the failed parts' logs are printed once more,
# above the summary. A part whose packages cannot be installed is reported as skipped; where CI is set, as in .ci/run,
# it fails.
set -euo pipefail

folder=build/check-all
mkdir -p "$folder"
for part in "$@"; do
    echo "add_test($part bash -o pipefail -c \"make --no-print-directory check-$part 2>&1 | tee $folder/$part.log\")"
    echo "set_tests_properties($part PROPERTIES WORKING_DIRECTORY \"$PWD\" TIMEOUT 3600)"
    [ -n "${CI:-}" ] || echo "set_tests_properties($part PROPERTIES SKIP_REGULAR_EXPRESSION \"Cannot be installed:\")"
done > "$folder/CTestTestfile.cmake"

unset MAKEFLAGS MAKELEVEL
ctest --test-dir "$folder" --verbose | tee "$folder/summary.log" && exit
code=$?

for part in "$@"; do
    if grep -q "Test *#[0-9]*: $part \.* *\*\*\*" "$folder/summary.log"; then
        printf '\nThe end of check-%s:\n' "$part"
        tail -n 80 "$folder/$part.log"
    fi
done
echo
sed -n '/^[0-9]*% tests passed/,$p' "$folder/summary.log"
exit "$code"
