#!/usr/bin/env bash
# Installs the Debian packages that the build, the tests and the reference host need.
# Only missing packages are installed; when everything is present the script prints nothing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config clang-format
  qt6-base-dev qt6-base-private-dev qt6-svg-dev qt6-tools-dev qt6-tools-dev-tools
  qt6-l10n-tools qt6-webengine-dev qt6-webengine-dev-tools qt6-pdf-dev
  qt6-image-formats-plugins qt6-translations-l10n libgl-dev xvfb xauth
  fonts-dejavu-core cmark-gfm gcovr python3
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=""
[[ $(id -u) -ne 0 ]] && sudo="sudo"
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
