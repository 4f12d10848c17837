#!/bin/sh
# One command: configure, build, generate, measure, report.
#   ./run.sh [--quick] [--size MB] [--work DIR] [--cmake "-D..."] [further xmlbench options]
# Everything produced goes below --work (default: build/bench of the checkout).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
work=$root/build/bench size=24 docs=2000 cmake_extra="" quick=""
while [ $# -gt 0 ]; do
  case $1 in
    --quick) size=2 docs=200 quick="--reps 3 --tree-reps 2"; shift ;;
    --size) size=$2; shift 2 ;;
    --docs) docs=$2; shift 2 ;;
    --work) work=$2; shift 2 ;;
    --cmake) cmake_extra=$2; shift 2 ;;
    *) break ;;
  esac
done
mkdir -p "$work/data" "$work/results"
gen=""; command -v ninja >/dev/null 2>&1 && gen="-G Ninja"
# shellcheck disable=SC2086
cmake -S "$root" -B "$work/cmake" $gen -DCMAKE_BUILD_TYPE=Release -DRYNCOMMON_BENCH=ON -DRYNCOMMON_TESTS=OFF \
  -DRYNCOMMON_EXAMPLES=OFF $cmake_extra >"$work/cmake.log" 2>&1 || { cat "$work/cmake.log"; exit 1; }
grep 'xmlbench:' "$work/cmake.log" || true
cmake --build "$work/cmake" --parallel "${RYN_JOBS:-$(nproc)}" >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }
bin=$work/cmake/bench/xml
stamp="$size $docs $(cksum <"$here/gen/gen.cpp")"
if [ "$(cat "$work/data/stamp" 2>/dev/null || true)" != "$stamp" ]; then
  "$bin/xmlgen" "$work/data" "$size" "$docs" 4096 >&2
  echo "$stamp" >"$work/data/stamp"
fi
if [ "$size $docs" = "24 2000" ]; then (cd "$work/data" && sha256sum --quiet -c "$here/gen/SHA256SUMS") >&2; fi
rc=0
# shellcheck disable=SC2086
"$bin/xmlbench" --data "$work/data" --out "$work/results/results.tsv" $quick "$@" || rc=$?
"$here/report.py" "$work/results/results.tsv" --json "$work/results/results.json" | tee "$work/results/tables.txt"
exit $rc
