#!/bin/sh
# Test/code line ratio: non-blank lines of .cpp/.h/.py under tests/ against
# the code under src/ host/ platform/ apps/ bench/ fuzz/.
# Usage: scripts/ratio.sh [repo root]
cd "${1:-$(dirname "$0")/..}" || exit 1
count() {
    find "$@" -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.py' \) \
        -exec cat {} + 2>/dev/null | grep -cv '^[[:space:]]*$'
}
t=$(count tests)
c=$(count src host platform apps bench fuzz)
awk -v t="$t" -v c="$c" 'BEGIN { printf "tests %d, code %d, ratio %.1f %%\n", t, c, 100 * t / c }'
