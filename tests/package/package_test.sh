#!/usr/bin/env bash
# Usage: package_test.sh CPACK BUILD_DIR SOURCE_DIR CHECK_PATHS(yes|no)
set -euo pipefail
cpack=$1 build=$2 source=$3 check_paths=${4:-yes}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

"$cpack" --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log"; fail "cpack"; }
deb=$(ls "$work"/out/*.deb)
dpkg-deb -x "$deb" "$work/root"
root=$work/root

depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
[[ $depends == *libqt6widgets6* && $depends == *libmodbus* ]] || fail "dependencies: $depends"
for f in usr/bin/zordrivebench usr/bin/zordrive-sim usr/lib/zordrivebench/modules/QXParmira.so \
    usr/share/zordrivebench/devices/zd3s_servo.json usr/share/zordrivebench/Config/UpdateAttribute.ini \
    usr/share/applications/zordrivebench.desktop \
    usr/share/icons/hicolor/scalable/apps/zordrivebench.svg; do
    [ -e "$root/$f" ] || fail "$f is not in the package"
done
# Nothing in the package may point back at the machine it was built on.
if [ "$check_paths" = yes ] && grep -rlF -e "$build" -e "$source" "$root"; then
    fail "the files above name the build or source tree"
fi

# Run from an unrelated folder, with no display and nothing of ours in the environment.
mkdir "$work/cwd"
cd "$work/cwd"
run() { env -u DISPLAY -u WAYLAND_DISPLAY -u ZOR_DEVICES_DIR -u QT_QPA_PLATFORM \
    "$root/usr/bin/zordrivebench" "$@"; }

lines=$(run --list | wc -l)
[ "$lines" -eq 3 ] || fail "--list printed $lines lines"
run --export ZD3S low.csv || fail "--export"
run --access-code 2468 --export ZD3S all.csv || fail "--export with the access code"
low=$(wc -l <low.csv) all=$(wc -l <all.csv)
echo "export rows: $low at the lowest level, $all with the access code"
[ "$all" -gt $((low * 5)) ] || fail "the access code opened too little"
grep -q '^H0B-22,[^,]*,5[34][0-9]\.' all.csv || fail "the bus voltage is not the running drive's"

# A demo project ignores device files in the folder it is started from.
echo '{}' >zd3s_servo.json
run --list >/dev/null || fail "a zd3s_servo.json in the current folder broke the demo"
rm zd3s_servo.json

# The module library missing or cut short: its exit code, at once, and no crash.
module=$root/usr/lib/zordrivebench/modules/QXParmira.so
cp "$module" "$work/whole.so"
for size in 0 1000 100000; do
    head -c "$size" "$work/whole.so" >"$module"
    set +e
    run --export ZD3S cut.csv 2>"$work/err"
    code=$?
    set -e
    [ "$code" -eq 6 ] || { cat "$work/err"; fail "a module of $size bytes: exit $code"; }
done
# Missing, and a whole library that is no module: the window gives up at once as well.
for kind in missing foreign; do
    rm -f "$module"
    [ "$kind" = foreign ] && cp "$root/usr/lib/zordrivebench/lib/libzorskin.so" "$module"
    start=$SECONDS
    set +e
    run --screenshot "$work/shot.png" 2>"$work/err"
    code=$?
    set -e
    [ "$code" -eq 6 ] || { cat "$work/err"; fail "$kind module: exit $code"; }
    [ $((SECONDS - start)) -lt 10 ] || fail "$kind module: the window waited"
done
cp "$work/whole.so" "$module"

# A display with no X server behind it: off screen, said on stderr.
set +e
env -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM DISPLAY=:97 "$root/usr/bin/zordrivebench" \
    --screenshot "$work/shot.png" >/dev/null 2>"$work/err"
code=$?
set -e
[ "$code" -eq 0 ] || { cat "$work/err"; fail "DISPLAY without a server: exit $code"; }
grep -q "no X server" "$work/err" || fail "no line about the missing X server"
head -c 4 "$work/shot.png" | grep -q PNG || fail "no picture"
echo "package test passed"
