#!/usr/bin/env bash
# Installs every Debian package the build needs. Idempotent and quiet when all is there.
set -euo pipefail
packages=(cmake ninja-build g++ ccache pkg-config libboost-dev libboost-regex-dev libtbb-dev
          liblua5.4-dev libzip-dev libgtest-dev libgmock-dev libbenchmark-dev time)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "setup: installing ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
