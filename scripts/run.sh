#!/usr/bin/env bash
# Sets up the machine, builds ZorDriveBench with the Parmira module and runs it on the
# demo project of simulated drives (or on a project file: ./scripts/run.sh --project F).
# Without a display it renders the main window, with the first drive's parameter list
# open, to a PNG and says where.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build"

bash "$root/scripts/setup.sh"
cmake -S "$root" -B "$build" -G Ninja >/dev/null
cmake --build "$build" --target zordrivebench QXParmira

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    shot="$build/zordrivebench.png"
    QT_QPA_PLATFORM=offscreen "$build/bin/zordrivebench" --screenshot "$shot" "$@"
else
    exec "$build/bin/zordrivebench" "$@"
fi
