#!/usr/bin/env bash
# Installs what is missing, builds the project and runs its tests.
#   scripts/test.sh [CTEST-OPTION...]      for example: scripts/test.sh -R Uri
# RYN_PRESET chooses the CMake preset (dev), RYN_JOBS the number of parallel jobs.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

preset=${RYN_PRESET:-dev}
packages=("${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}")
if [[ $preset == fuzz ]]; then packages+=("${CLANG_PACKAGES[@]}"); fi
need_packages "${packages[@]}"

cd "$ROOT"
# Named, because scripts/demo.sh uses the release tree without its tests.
configure_preset "$preset" -DRYNCOMMON_TESTS=ON
say "== $preset: build"
cmake --build --preset "$preset"
say "== $preset: test"
ctest --preset "$preset" "$@"
