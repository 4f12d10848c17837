#!/usr/bin/env bash
# Builds the library in Release and runs every small benchmark. The table shows medians of CPU time: the programs'
# rows alternate at random, so that a busy machine slows all of them alike.
#   bench/micro/run.sh [--quick] [OPTION OF GOOGLE BENCHMARK...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

need_packages "${BUILD_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"
options=(--benchmark_repetitions=15 --benchmark_min_time=0.1)
if [[ ${1:-} == --quick ]]; then
    options=(--benchmark_repetitions=3 --benchmark_min_time=0.02)
    shift
fi
configure_preset release -B build/bench/cmake -DRYNCOMMON_BENCH=ON -DRYNCOMMON_TESTS=OFF -DRYNCOMMON_EXAMPLES=OFF
cmake --build "$ROOT/build/bench/cmake" --target microbench >&2
results=$ROOT/build/bench/results
mkdir -p "$results"
for program in "$ROOT"/build/bench/cmake/bench/micro/*bench; do
    if [[ ! -x $program || -d $program ]]; then continue; fi
    say "== ${program##*/}"
    "$program" "${options[@]}" --benchmark_report_aggregates_only=true --benchmark_enable_random_interleaving=true \
        --benchmark_out="$results/${program##*/}.json" --benchmark_out_format=json "$@"
done
