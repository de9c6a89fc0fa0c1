#!/usr/bin/env bash
# Sets up the machine, builds everything and runs the whole test suite.
# Usage: scripts/test.sh [BUILD_DIR] [extra cmake arguments...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
shift || true
case "$build" in /*) ;; *) build="$root/$build" ;; esac

bash "$root/scripts/setup.sh"

cmake -S "$root" -B "$build" -G Ninja "$@" >/dev/null
cmake --build "$build"

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$root/tests/lsan.supp:print_suppressions=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
export TSAN_OPTIONS=${TSAN_OPTIONS:-halt_on_error=1:suppressions=$root/tests/tsan.supp}
ctest --test-dir "$build" --output-on-failure -j 2
