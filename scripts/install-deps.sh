#!/usr/bin/env bash
# Installs what building and testing Runplan needs on Debian 12. Skips apt when everything is there.
set -euo pipefail
packages=(cmake g++ make ccache qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev
          libqt6svg6 qt6-qpa-plugins xvfb xauth
          poppler-utils)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    SUDO=""
    [ "$(id -u)" -ne 0 ] && SUDO="sudo"
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
