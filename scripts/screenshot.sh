#!/usr/bin/env bash
# Starts the real Runplan window on a virtual screen with the shipped catalog and the sample
# project, and saves what the screen shows as docs/screenshot.png.
# Needs: Xvfb and ImageMagick's import (Debian: xvfb imagemagick).
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${RUNPLAN_BUILD_DIR:-$here/build}"
out="${1:-$here/docs/screenshot.png}"
[ -x "$build/bin/runplan" ] || "$here/scripts/build.sh" >&2

# A scratch folder for the settings and the project: the program reads every argument that
# contains a "-" as an option, so the project is handed over by a plain relative name.
work="$(mktemp -d /tmp/rpshotXXXXXX)"
cp "$here/tests/data/app/sample.rpproj" "$work/sample.rpproj"
mkdir -p "$work/home/config"

display=":${RUNPLAN_SCREEN:-99}"
Xvfb "$display" -screen 0 893x782x24 -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
app_pid=""
cleanup() {
    [ -n "$app_pid" ] && kill "$app_pid" 2>/dev/null || true
    kill "$xvfb_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

for _ in $(seq 50); do
    [ -S "/tmp/.X11-unix/X${display#:}" ] && break
    sleep 0.1
done

(cd "$work" && exec env DISPLAY="$display" HOME="$work/home" XDG_CONFIG_HOME="$work/home/config" \
    QT_QPA_PLATFORM=xcb "$build/bin/runplan" sample.rpproj >"$work/runplan.log" 2>&1) &
app_pid=$!

# The splash goes after 1.5 s; then the window is alone on the screen.
sleep "${RUNPLAN_SHOT_DELAY:-4}"
mkdir -p "$(dirname "$out")"
DISPLAY="$display" import -window root "$out"
echo "saved $out"
