#!/usr/bin/env bash
# Builds the library in Release and measures archives and gzip data, side by side with their peers. The tables show
# medians of CPU time: the rows alternate at random, so that a busy machine slows all of them alike.
#   bench/zip/run.sh [--quick] [OPTION OF GOOGLE BENCHMARK...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

need_packages "${BUILD_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"
options=(--benchmark_repetitions=9 --benchmark_min_time=0.2)
if [[ ${1:-} == --quick ]]; then
    options=(--benchmark_repetitions=3 --benchmark_min_time=0.05)
    shift
fi
configure_preset release -B build/bench/cmake -DRYNCOMMON_BENCH=ON -DRYNCOMMON_TESTS=OFF -DRYNCOMMON_EXAMPLES=OFF
cmake --build "$ROOT/build/bench/cmake" --target zipbench gzipbench >&2
results=$ROOT/build/bench/results
mkdir -p "$results"
for program in zipbench gzipbench; do
    say "== $program"
    "$ROOT/build/bench/cmake/bench/zip/$program" "${options[@]}" \
        --benchmark_report_aggregates_only=true --benchmark_enable_random_interleaving=true \
        --benchmark_out="$results/$program.json" --benchmark_out_format=json "$@"
done
