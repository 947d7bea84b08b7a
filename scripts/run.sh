#!/usr/bin/env bash
# Installs what is missing, builds, and starts Runplan with the given arguments.
# Without a display the program runs on the offscreen platform, so batch work (-nw) still runs.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$here/scripts/install-deps.sh" >&2
"$here/scripts/build.sh" >&2
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    export QT_QPA_PLATFORM=offscreen
fi
exec "${RUNPLAN_BUILD_DIR:-$here/build}/bin/runplan" "$@"
