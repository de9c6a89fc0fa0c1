#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy over the code of src/, host/, platform/ and
# apps/ (tests, benchmarks and fuzz targets are left out), with the compile commands of a
# build that has been built (its generated moc files are read too).
# Usage: scripts/tidy.sh [BUILD_DIR] [FILE...]   (default build/, every file)
# PARMIRA_TIDY_JOBS sets how many files run at once (default: the number of processors).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
shift || true
case "$build" in /*) ;; *) build="$root/$build" ;; esac
if [ ! -f "$build/compile_commands.json" ]; then
    echo "tidy: no $build/compile_commands.json; configure and build first" >&2
    exit 2
fi
if [ $# -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(/usr/bin/python3 - "$build/compile_commands.json" "$root" <<'PY'
import json, sys
root = sys.argv[2] + "/"
seen = set()
for entry in json.load(open(sys.argv[1])):
    f = entry["file"]
    if f.startswith(root) and f[len(root):].split("/")[0] in ("src", "host", "platform", "apps"):
        if f not in seen:
            seen.add(f)
            print(f)
PY
)
fi
jobs=${PARMIRA_TIDY_JOBS:-$(nproc)}
# -Wno-overloaded-virtual: the framework's controls hide CWnd::Create with their own Create,
# as the classes they stand in for do; gcc's -Wall, which the build uses, does not ask this.
printf '%s\n' "${files[@]}" |
    xargs -P "$jobs" -n 4 clang-tidy -p "$build" --quiet --extra-arg=-Wno-overloaded-virtual \
        --extra-arg=-Wno-unknown-warning-option 2> >(grep -v ' warnings\? generated\.$' >&2)
echo "tidy: ${#files[@]} files clean"
