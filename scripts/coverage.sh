#!/usr/bin/env bash
# Runs the tests with coverage and prints the share of lines and branches run, per file.
#   scripts/coverage.sh [GCOVR-OPTION...]      the pages stand in build/coverage/html/index.html
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_packages gcovr
cd "$ROOT"
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
RYN_PRESET=coverage scripts/test.sh
mkdir -p build/coverage/html
gcovr --root . --object-directory build/coverage --exclude 'tests/' --exclude 'examples/' --exclude 'bench/' --exclude 'fuzz/' \
    --exclude-throw-branches -j "$JOBS" --html-details build/coverage/html/index.html --print-summary --txt - "$@"
