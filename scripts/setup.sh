#!/usr/bin/env bash
# Installs the Debian 12 packages Quillfern builds with; skips apt when everything is there already.
set -euo pipefail

packages=(build-essential cmake ninja-build pkg-config libicu-dev libgl-dev
          qt6-base-dev qt6-base-dev-tools qt6-svg-dev)
missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
if ((${#missing[@]})); then
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi
