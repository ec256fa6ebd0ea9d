#!/usr/bin/env bash
# Builds everything and runs the main job: `blockara demo`.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
"$here/scripts/build.sh"
exec "${BKETC_BUILD_DIR:-$here/build}/app/blockara" demo "$@"
