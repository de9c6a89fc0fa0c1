#!/usr/bin/env bash
# Runs one fuzz target under AddressSanitizer and UndefinedBehaviorSanitizer for a while.
# Usage: scripts/fuzz.sh NAME SECONDS [libFuzzer options...]
#        scripts/fuzz.sh --list
# NAME is a file fuzz/fuzz_NAME.cpp. The clang build lives in build-fuzz (or $PARMIRA_FUZZ_BUILD).
# Inputs the fuzzer finds interesting collect in build-fuzz/corpus/NAME; the seed corpus
# fuzz/corpus/NAME is read, not written, except that an input that crashes the target is
# saved there as crash-*, so that the corpus replay in ctest keeps it fixed.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${PARMIRA_FUZZ_BUILD:-$root/build-fuzz}

if [ "${1:-}" = "--list" ]; then
    for f in "$root"/fuzz/fuzz_*.cpp; do basename "$f" .cpp | sed 's/^fuzz_//'; done
    exit 0
fi
if [ $# -lt 2 ] || [ ! -f "$root/fuzz/fuzz_$1.cpp" ] || ! [[ "$2" =~ ^[0-9]+$ ]]; then
    echo "usage: $0 NAME SECONDS [libFuzzer options...]  (names: $0 --list)" >&2
    exit 2
fi
name=$1
seconds=$2
shift 2

# Options of one target, before the caller's so that those still win. Real descriptions'
# structure (every section, links between parameters, groups, value tables) fits in 8 KB;
# the seed corpus holds shortened real files of that size. Without the cap the fuzzer grows
# inputs to the largest seed and spends its time re-reading long parameter lists.
defaults=()
case "$name" in
device_json) defaults=(-max_len=8192) ;;
esac

if [ ! -f "$build/build.ninja" ]; then
    CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DPARMIRA_FUZZ=ON \
        -DPARMIRA_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
fi
cmake --build "$build" --target "fuzz_$name"

work="$build/corpus/$name"
mkdir -p "$work"
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1:allocator_may_return_null=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$root/tests/lsan.supp:print_suppressions=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
export QT_QPA_PLATFORM=offscreen
exec "$build/bin/fuzz_$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$root/fuzz/corpus/$name/" "${defaults[@]}" "$@" \
    "$work" "$root/fuzz/corpus/$name"
