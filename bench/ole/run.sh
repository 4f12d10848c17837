#!/usr/bin/env bash
# Builds the library in Release and runs the benchmark of compound files; medians of CPU time of repetitions that
# alternate at random.
#   bench/ole/run.sh [--quick] [OPTION OF GOOGLE BENCHMARK...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

need_packages "${BUILD_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"
options=(--benchmark_repetitions=15 --benchmark_min_time=0.2)
if [[ ${1:-} == --quick ]]; then
    options=(--benchmark_repetitions=3 --benchmark_min_time=0.05)
    shift
fi
configure_preset release -B build/bench/cmake -DRYNCOMMON_BENCH=ON -DRYNCOMMON_TESTS=OFF -DRYNCOMMON_EXAMPLES=OFF
cmake --build "$ROOT/build/bench/cmake" --target olebench >&2
results=$ROOT/build/bench/results
mkdir -p "$results"
exec "$ROOT/build/bench/cmake/bench/ole/olebench" "${options[@]}" --benchmark_report_aggregates_only=true \
    --benchmark_enable_random_interleaving=true --benchmark_out="$results/olebench.json" --benchmark_out_format=json "$@"
