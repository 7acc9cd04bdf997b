#!/bin/sh
# Which lines and branches of a folder the tests take: tools/coverage.sh [FOLDER] [PROBLEMS]
# Builds in build/coverage, runs the unit tests of the folder, for gcd/ the random problems and the transcripts of GCD
# as well, and prints a line a file; build/coverage/report.html shows the source. Needs gcovr.
set -e
cd "$(dirname "$0")/.."
folder=${1:-gcd} problems=${2:-20000}
build=build/coverage
cmake -S . -B $build -G Ninja -DCMAKE_BUILD_TYPE=None -DTOLVEX_WERROR=OFF \
    -DCMAKE_CXX_FLAGS="-O1 -fno-inline --coverage" >/dev/null
cmake --build $build --target tolvex unit_"$folder" gcd_stress
find $build -name '*.gcda' -delete
$build/tests/unit_"$folder" --gtest_brief=1
if [ "$folder" = gcd ]; then
    $build/tests/gcd_stress --count "$problems" >/dev/null
    grep -lE 'GCD|Sqfree|Content' tests/transcripts/*/*.script |
        xargs python3 tests/transcripts/run.py --tolvex $build/tolvex --scale 20
fi
gcovr --root . --object-directory $build --filter "$folder/" --exclude-throw-branches --branches \
    --html-details $build/report.html --txt $build/branches.txt
gcovr --root . --object-directory $build --filter "$folder/" --exclude-throw-branches
