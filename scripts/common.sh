# shellcheck shell=bash
# Sourced by the scripts beside it: the environment of builds and tests.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

export LANG=C.UTF-8 LC_ALL=C.UTF-8
# Precompiled headers and ccache: https://ccache.dev/manual/latest.html#_precompiled_headers
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}
# No window appears in a test, whether there is a display or not.
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}

# A compiler or a test program takes up to 1.5 GB: as many at once as there are processors and memory for.
parallelism() {
    local processors memory
    processors=$(nproc)
    memory=$(awk '/^MemAvailable:/ { print int($2 / 1500000) }' /proc/meminfo)
    [ "$memory" -ge 1 ] || memory=1
    echo $((memory < processors ? memory : processors))
}

# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    cmake --preset "$preset" -Wno-dev --log-level=WARNING >/dev/null
    cmake --build --preset "$preset" -j "$(parallelism)" ${1+--target "$@"}
}
