#!/usr/bin/env bash
# Sets up the machine, builds everything and runs the whole test suite.
# Usage: scripts/test.sh [BUILD_DIR] [extra cmake arguments...]
# PARMIRA_TEST_LABELS (a ctest label regex, e.g. "test_table|test_host_sim") narrows the
# run to those suites and builds only them.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
shift || true
case "$build" in /*) ;; *) build="$root/$build" ;; esac

bash "$root/scripts/setup.sh"

cmake -S "$root" -B "$build" -G Ninja "$@" >/dev/null
labels=${PARMIRA_TEST_LABELS:-}
if [ -n "$labels" ]; then
    # Build the named suites (and the module, which some of them load) only.
    targets=$(echo "$labels" | tr '|' ' ')
    cmake --build "$build" --target QXParmira $targets
else
    cmake --build "$build"
fi

export QT_QPA_PLATFORM=offscreen
export LC_ALL=C.UTF-8
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$root/tests/lsan.supp:print_suppressions=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
export TSAN_OPTIONS=${TSAN_OPTIONS:-halt_on_error=1:suppressions=$root/tests/tsan.supp}
if [ -n "$labels" ]; then
    ctest --test-dir "$build" --output-on-failure --no-tests=error -j 2 -L "^($labels)\$"
else
    ctest --test-dir "$build" --output-on-failure -j 2
fi
