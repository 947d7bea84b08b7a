#!/usr/bin/env bash
# Installs what building and testing Runplan needs on Debian 12. Skips apt when everything is there.
set -euo pipefail
packages=(cmake g++ make ccache qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev
          libqt6svg6 qt6-qpa-plugins xvfb xauth
          poppler-utils qt6-tools-dev qt6-l10n-tools
          dpkg-dev desktop-file-utils appstream libxml2-utils shared-mime-info man-db lintian)
# One dpkg query for the whole list keeps the common case (everything installed) quick.
installed=$(dpkg-query -W -f='${Package} ${Status}\n' "${packages[@]}" 2>/dev/null |
            awk '$NF == "installed" { print $1 }' || true)
missing=()
for p in "${packages[@]}"; do
    grep -qx "$p" <<<"$installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    SUDO=""
    [ "$(id -u)" -ne 0 ] && SUDO="sudo"
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
