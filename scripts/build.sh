#!/usr/bin/env bash
# Configures and builds into build/ (or $BKETC_BUILD_DIR). Extra arguments go to CMake's configure step.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
"$here/scripts/setup.sh"
dir=${BKETC_BUILD_DIR:-$here/build}
cmake -S "$here" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=${BKETC_BUILD_TYPE:-RelWithDebInfo} "$@" >/dev/null
cmake --build "$dir" -j2
