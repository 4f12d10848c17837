# shellcheck shell=bash disable=SC2034
# Sourced by the other scripts: finds the project's root and installs what a bare Debian 12 lacks.
# Sets ROOT and JOBS (RYN_JOBS overrides the number of processors).

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
JOBS=${RYN_JOBS:-$(nproc)}
export CMAKE_BUILD_PARALLEL_LEVEL=$JOBS CTEST_PARALLEL_LEVEL=$JOBS

BUILD_PACKAGES=(
    g++ cmake ninja-build pkg-config
    libicu-dev zlib1g-dev libcurl4-openssl-dev uuid-dev libhwy-dev
)
# Expat is the second reader of the fuzz targets, whose seeds are tests.
TEST_PACKAGES=(libgtest-dev libcpp-httplib-dev libssl-dev libexpat1-dev)
# Google Benchmark, and the peers.
BENCH_PACKAGES=(
    python3 libbenchmark-dev libexpat1-dev libxml2-dev libpugixml-dev libzip-dev libminizip-dev libgsf-1-dev
)
# The runtime package holds the sanitizers' and libFuzzer's libraries.
CLANG_PACKAGES=(clang libclang-rt-14-dev)

say() { printf '%s\n' "$*" >&2; }

die() {
    say "error: $*"
    exit 1
}

is_installed() {
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# need_packages PACKAGE... - installs those that are missing. Where there is no Debian package manager the
# packages are taken to be there; CMake names what is not.
need_packages() {
    if ! command -v apt-get dpkg-query >/dev/null; then
        say "no apt-get here; expecting the equivalents of: $*"
        return 0
    fi
    local missing=() package
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    if ((${#missing[@]} == 0)); then return 0; fi

    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || die "packages are missing, as root: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    say "== installing: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -qq -y --no-install-recommends -o Dpkg::Use-Pty=0 install "${missing[@]}" >&2
}

# configure_preset PRESET [CMAKE-OPTION...] - configures build/PRESET; its messages are shown on failure only.
configure_preset() {
    local preset=$1 log
    shift
    say "== $preset: configure"
    log=$(cd "$ROOT" && cmake --preset "$preset" "$@" 2>&1) || {
        say "$log"
        return 1
    }
}

# sources - every C++ file of the project, relative to its root, one per line. The programs that compare XML libraries
# keep a form of their own, but for our adapter.
sources() {
    local folders=() folder
    for folder in include platform core text streams values resources xml tests examples bench fuzz; do
        if [[ -d $ROOT/$folder ]]; then folders+=("$folder"); fi
    done
    (cd "$ROOT" && find "${folders[@]}" -path bench/xml -prune -o -type f \( -name '*.h' -o -name '*.cpp' \) -print \
        && echo bench/xml/contestants/ryncommon.cpp) | sort
}
