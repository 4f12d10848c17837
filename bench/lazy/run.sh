#!/usr/bin/env bash
# Builds the library in Release and measures lazy loading.
#   bench/lazy/run.sh [--quick] [--check] [--size MB] [--eager MB]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

need_packages "${BUILD_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"
configure_preset release -B build/bench/cmake -DRYNCOMMON_BENCH=ON -DRYNCOMMON_TESTS=OFF -DRYNCOMMON_EXAMPLES=OFF
cmake --build "$ROOT/build/bench/cmake" --target lazybench >&2
exec "$ROOT/build/bench/cmake/bench/lazy/lazybench" "$@"
