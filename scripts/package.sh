#!/usr/bin/env bash
# Builds the Debian package runplan_<version>_<arch>.deb into ./build (or $RUNPLAN_BUILD_DIR) with
# CPack, then prints lintian's findings on it when lintian is installed (they never fail the script).
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${RUNPLAN_BUILD_DIR:-$here/build}"
"$here/scripts/install-deps.sh" >&2
"$here/scripts/build.sh" >&2
(cd "$build" && cpack -G DEB >&2)
deb=$(ls -t "$build"/runplan_*.deb | head -n 1)
echo "== $deb ($(du -k "$deb" | cut -f1) KiB)"
dpkg-deb -f "$deb" Package Version Section Installed-Size Depends
if command -v lintian >/dev/null; then
    echo "== lintian"
    lintian --info "$deb" || true
    echo "(end of lintian findings)"
else
    echo "lintian is not installed: package not checked"
fi
