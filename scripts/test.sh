#!/usr/bin/env bash
# Builds everything and runs every test (unit tests and Lua scenarios), each in its own process.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
"$here/scripts/build.sh" "$@"
ctest --test-dir "${BKETC_BUILD_DIR:-$here/build}" -j2 --output-on-failure --timeout 300
