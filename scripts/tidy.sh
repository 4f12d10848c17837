#!/usr/bin/env bash
# Runs clang-tidy over the library's sources, or over the files given.
#   scripts/tidy.sh [FILE...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${CLANG_PACKAGES[@]}" clang-tidy
files=()
for file in "$@"; do files+=("$(realpath "$file")"); done
cd "$ROOT"
# A tree of its own: Clang has to understand every option in the compilation database.
configure_preset release -B build/tidy -DCMAKE_CXX_COMPILER=clang++
if ((${#files[@]} == 0)); then
    mapfile -t files < <(sources | grep -E '^(platform|core|text|streams|values|resources|xml)/.*\.cpp$')
fi
printf '%s\n' "${files[@]}" | xargs -d '\n' -n 1 -P "$JOBS" clang-tidy -p build/tidy --quiet
