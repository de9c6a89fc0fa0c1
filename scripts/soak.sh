#!/bin/bash
# Soak run, not part of CI: four parameter panels open on drives served by zordrive-sim over
# Modbus TCP, refresh every 50 ms, one write per module every second.
#
#     scripts/soak.sh [SECONDS]        (default 600; a short trial takes e.g. 60)
#
# SOAK_WRAPPER runs the program under a profiler, e.g. SOAK_WRAPPER="heaptrack -o /tmp/soak"
# to see what the heap holds when memory grows.
#
# Prints resident memory at the start and the end and every error; exits non-zero when a
# write was lost, a value read back wrong, a module went offline or the simulator failed.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
seconds=${1:-600}

cmake --build "$build" --target link_soak zordrive-sim QXParmira >/dev/null

work=$(mktemp -d)
sim=""
cleanup() {
    if [ -n "$sim" ]; then kill "$sim" 2>/dev/null || true; wait "$sim" 2>/dev/null || true; fi
    rm -rf "$work"
}
trap cleanup EXIT

servo=zd3s_servo.json
"$build/bin/zordrive-sim" --tcp 127.0.0.1:0 $servo $servo $servo $servo \
    >"$work/sim.out" 2>"$work/sim.err" &
sim=$!
for _ in $(seq 100); do
    [ -s "$work/sim.out" ] && break
    sleep 0.1
done
port=$(sed -n 's/^tcp 127\.0\.0\.1:\([0-9]*\)$/\1/p' "$work/sim.out" | head -1)
if [ -z "$port" ]; then
    echo "soak: zordrive-sim did not start" >&2
    cat "$work/sim.err" >&2
    exit 1
fi

{
    echo '{ "format": "zordrivebench-project", "version": 1, "modules": ['
    for unit in 1 2 3 4; do
        sep=$([ $unit -lt 4 ] && echo , || true)
        echo "  { \"key\": \"AXIS$unit\", \"deviceFile\": \"$servo\","
        echo "    \"link\": { \"type\": \"modbus-tcp\", \"host\": \"127.0.0.1\", \"port\": $port, \"unit\": $unit } }$sep"
    done
    echo '] }'
} >"$work/soak.json"

echo "soak: ${seconds} s against zordrive-sim on port $port"
status=0
QT_QPA_PLATFORM=offscreen ${SOAK_WRAPPER:-} "$build/bin/link_soak" --project "$work/soak.json" \
    --seconds "$seconds" \
    || status=$?
if ! kill -0 "$sim" 2>/dev/null; then
    echo "soak: zordrive-sim ended during the run" >&2
    status=1
fi
if [ -s "$work/sim.err" ]; then
    echo "soak: zordrive-sim said:" >&2
    cat "$work/sim.err" >&2
fi
exit $status
