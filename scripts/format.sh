#!/usr/bin/env bash
# Applies clang-format (the .clang-format at the root) to every C++ file we keep in git.
# With --check it changes nothing and fails, naming the files, when one is not formatted.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=${1:-apply}
mapfile -t files < <(git ls-files '*.cpp' '*.h')
if [ "$mode" = "--check" ]; then
    bad=()
    for f in "${files[@]}"; do
        clang-format --dry-run -Werror "$f" >/dev/null 2>&1 || bad+=("$f")
    done
    if [ ${#bad[@]} -ne 0 ]; then
        printf 'not formatted (run scripts/format.sh): %s\n' "${bad[@]}" >&2
        exit 1
    fi
    echo "formatting: ${#files[@]} files checked"
else
    clang-format -i "${files[@]}"
fi
