#!/usr/bin/env bash
# Builds with AddressSanitizer + UndefinedBehaviorSanitizer into ./build-asan and runs the whole suite.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
export RUNPLAN_BUILD_DIR="${RUNPLAN_ASAN_BUILD_DIR:-$here/build-asan}"
"$here/scripts/install-deps.sh"
"$here/scripts/build.sh" -DRUNPLAN_SANITIZE=ON -DRUNPLAN_BUILD_BENCH=OFF
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:strict_string_checks=1"
export LSAN_OPTIONS="suppressions=$here/tests/sanitizer/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
cd "$RUNPLAN_BUILD_DIR"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --parallel "$(nproc)"
