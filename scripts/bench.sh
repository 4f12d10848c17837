#!/usr/bin/env bash
# Measures the library: XML events and trees side by side with the installed peers, lazy loading, archives, compound
# files, and small parts. Results land in build/bench/results, with a chart of the XML figures.
#   scripts/bench.sh [--quick] [OPTION OF bench/xml/run.sh...]
# bench/compare.py compares two result files of one kind.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_packages "${BUILD_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"
cd "$ROOT"
quick=()
if [[ ${1:-} == --quick ]]; then quick=(--quick); fi
bench/xml/run.sh "$@"
bench/chart.py build/bench/results/results.tsv build/bench/results/chart.svg
bench/lazy/run.sh "${quick[@]}"
for part in zip ole micro; do "bench/$part/run.sh" "${quick[@]}"; done
say "== results and chart.svg are in build/bench/results"
