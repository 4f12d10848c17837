#!/usr/bin/env bash
# Formats the project's C++ files; with --check it changes nothing and fails where a file would change.
#   scripts/format.sh [--check] [FILE...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# Named, because bench/xml tells editors to leave the peers' adapters as they are.
mode=(--style="file:$ROOT/.clang-format")
if [[ ${1:-} == --check ]]; then
    mode+=(--dry-run -Werror)
    shift
else
    mode+=(-i)
fi
need_packages clang-format
if (($#)); then
    exec clang-format "${mode[@]}" -- "$@"
fi
cd "$ROOT"
sources | xargs -d '\n' -n 16 -P "$JOBS" clang-format "${mode[@]}" --
