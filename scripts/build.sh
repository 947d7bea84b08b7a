#!/usr/bin/env bash
# Configures and builds Runplan into ./build (or $RUNPLAN_BUILD_DIR).
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${RUNPLAN_BUILD_DIR:-$here/build}"
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$build" --parallel "$(nproc)"
