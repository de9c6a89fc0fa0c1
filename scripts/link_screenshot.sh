#!/usr/bin/env bash
# Renders ZorDriveBench with two modules on Modbus TCP, each served by a zordrive-sim of
# its own: the servo's simulator runs, the inverter's has been stopped, so the picture
# shows one module online and one offline. Needs no display.
# Usage: scripts/link_screenshot.sh [PNG]   (default: build/link_modules.png)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build"
shot=${1:-$build/link_modules.png}
cmake --build "$build" --target zordrivebench QXParmira zordrive-sim >/dev/null

work=$(mktemp -d)
pids=()
cleanup() {
    for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done
    rm -rf "$work"
}
trap cleanup EXIT

# Starts a simulator on a free port and sets `port` to it.
start_sim() {
    local out="$work/sim$1"
    "$build/bin/zordrive-sim" --tcp 127.0.0.1:0 "$2" >"$out" 2>&1 </dev/null &
    pids+=($!)
    port=""
    for _ in $(seq 100); do
        port=$(sed -n 's/^tcp .*:\([0-9]*\)$/\1/p' "$out" | head -n1)
        [ -n "$port" ] && return
        sleep 0.05
    done
    echo "zordrive-sim did not start" >&2
    exit 1
}

start_sim 1 zd3s_servo.json
servo_port=$port
start_sim 2 zv5_inverter.json
inverter_port=$port
kill "${pids[1]}"
wait "${pids[1]}" 2>/dev/null || true

cat >"$work/line.json" <<EOF
{
  "format": "zordrivebench-project", "version": 1,
  "modules": [
    { "key": "SERVO", "deviceFile": "zd3s_servo.json",
      "link": { "type": "modbus-tcp", "host": "127.0.0.1", "port": $servo_port, "unit": 1 } },
    { "key": "ZV5", "deviceFile": "zv5_inverter.json",
      "link": { "type": "modbus-tcp", "host": "127.0.0.1", "port": $inverter_port, "unit": 1 } }
  ]
}
EOF
QT_QPA_PLATFORM=offscreen "$build/bin/zordrivebench" --project "$work/line.json" \
    --screenshot "$shot"
