#!/usr/bin/env bash
# Installs what is missing, builds the fuzz targets and runs each in turn; fails when one finds something.
#   scripts/fuzz.sh SECONDS [TARGET...]      for example: scripts/fuzz.sh 600 xml zip
# Without targets it runs all. RYN_JOBS sets the number of parallel jobs of the build. Inputs that reached something
# new stay in build/fuzz-corpus/TARGET for the next time, inputs that failed in build/fuzz-findings/TARGET.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

SECONDS_EACH=${1:-}
[[ $SECONDS_EACH =~ ^[1-9][0-9]*$ ]] || die "usage: scripts/fuzz.sh SECONDS [TARGET...]"
shift
# Room for every seed; longer inputs reach little that shorter ones do not, and cost more.
MAX_LENGTH=32768
# Interned names stay for the life of a process, so that hours of new documents need more.
MEMORY_MB=2048
SECONDS_PER_INPUT=30
# In CI the same inputs come each time, at most so many of them, so that a change answers for itself.
fixed=()
if [[ -n ${CI:-} ]]; then fixed=(-seed=1 -runs=10000); fi
export ASAN_OPTIONS="detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:quarantine_size_mb=64"
export UBSAN_OPTIONS="print_stacktrace=1"

need_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${CLANG_PACKAGES[@]}"
cd "$ROOT"
# The library and the targets only.
configure_preset fuzz -DRYNCOMMON_TESTS=OFF
declare -A known=()
while read -r name words; do known[$name]=$words; done <build/fuzz/fuzz/targets.txt
if (($# == 0)); then mapfile -t names < <(printf '%s\n' "${!known[@]}" | sort); else names=("$@"); fi
for name in "${names[@]}"; do [[ -v known[$name] ]] || die "there is no target $name"; done

say "== fuzz: build"
cmake --build --preset fuzz --target fuzzers

# run_target NAME DICTIONARY SEEDS... - false when there is a finding.
run_target() {
    local name=$1 dictionary=$2 program=build/fuzz/fuzz/fuzz_$1 corpus=build/fuzz-corpus/$1
    local findings=build/fuzz-findings/$1 log=build/fuzz-findings/$1.log
    shift 2
    mkdir -p "$corpus" "$findings"
    say "== fuzz: $name, $SECONDS_EACH s"
    if "$program" -dict="$dictionary" -max_total_time="$SECONDS_EACH" -max_len="$MAX_LENGTH" \
        -rss_limit_mb="$MEMORY_MB" -timeout="$SECONDS_PER_INPUT" -artifact_prefix="$findings/" "${fixed[@]}" \
        "$corpus" "$@" >"$log" 2>&1; then
        say "   $(grep -a '^Done' "$log" || echo 'no figures')"
        return 0
    fi
    grep -av '^#' "$log" >&2 || true
    say "== fuzz: $name FAILED. The log is $log; to run the input again:"
    say "   $program $(sed -n 's/^.*Test unit written to //p' "$log" | tail -n 1)"
    return 1
}

failed=()
for name in "${names[@]}"; do
    # The words are a dictionary and folders of seeds.
    read -ra words <<<"${known[$name]}"
    run_target "$name" "${words[@]}" || failed+=("$name")
done
if ((${#failed[@]} > 0)); then die "findings in: ${failed[*]}"; fi
say "== fuzz: no findings in ${#names[@]} targets"
