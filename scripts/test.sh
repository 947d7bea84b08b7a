#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$here/scripts/install-deps.sh"
"$here/scripts/build.sh"
cd "${RUNPLAN_BUILD_DIR:-$here/build}"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --parallel "$(nproc)"
