#!/usr/bin/env bash
# Measures the library: XML events and trees side by side with the installed peers, then lazy loading.
#   scripts/bench.sh [--quick] [OPTION OF bench/xml/run.sh...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_packages "${BUILD_PACKAGES[@]}" python3 libexpat1-dev libxml2-dev libpugixml-dev
cd "$ROOT"
lazy=()
if [[ ${1:-} == --quick ]]; then lazy=(--quick); fi
bench/xml/run.sh "$@"
bench/lazy/run.sh "${lazy[@]}"
