#!/usr/bin/env bash
# Runs the tests with coverage and prints the share of the library's lines that they run, by folder, and the lines
# that they do not run, by file. Fails below 95 % of the lines.
#   scripts/coverage.sh [GCOVR-OPTION...]      the pages stand in build/coverage/html/index.html
# The replays of the fuzzers' seeds do not count: they run much more than they look at.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

least=95
folders='core|text|streams|values|resources|xml|platform|include'

need_packages gcovr
cd "$ROOT"
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
RYN_PRESET=coverage scripts/test.sh --exclude-regex '^(Fuzz|Source)\.'
mkdir -p build/coverage/html
# Of the library's objects alone, as the tests' would take long. Threads that count at once leave negative counts now and
# then, on which gcovr would stop.
result=0
gcovr --root . --object-directory build/coverage --filter "($folders)/" --exclude-throw-branches -j "$JOBS" \
    --html-details build/coverage/html/index.html --csv build/coverage/lines.csv --txt build/coverage/lines.txt \
    --fail-under-line "$least" --gcov-ignore-parse-errors "$@" \
    build/coverage/CMakeFiles 2>build/coverage/gcovr.log || result=$?

# A long name stands on a line of its own.
awk '/^(-|File |Directory:|TOTAL)/ || /Code Coverage Report/ { next }
     NF == 1 { name = $1; next }
     { if (name != "") $0 = name " " $0; name = "" }
     NF > 4 { print }' build/coverage/lines.txt
awk -F , 'NR > 1 {
    split($1, path, "/")
    lines[path[1]] += $2; run[path[1]] += $3
    lines["total"] += $2; run["total"] += $3
}
END { for (folder in lines) printf "%-10s %6d of %6d lines  %6.2f %%\n", folder, run[folder], lines[folder],
                                   100 * run[folder] / lines[folder] }' build/coverage/lines.csv | sort
exit "$result"
