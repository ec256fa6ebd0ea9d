#!/usr/bin/env bash
# Builds the fuzz targets with clang (libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer,
# every library instrumented for coverage) into build-fuzz/ (or $BKETC_FUZZ_DIR) and runs each
# target for a while on its committed corpus. New inputs go to build-fuzz/found/<target>/, never
# into fuzz/*/corpus; a crash, leak or time-out leaves its input in build-fuzz/ and fails.
#
#   scripts/fuzz.sh [seconds per target, default 30] [runs per target, default unbounded]
#
# Each target stops at whichever limit comes first. The last lines of each run (executions,
# coverage) are printed, and a summary line per target.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-30}
runs=${2:--1}
dir=${BKETC_FUZZ_DIR:-$here/build-fuzz}
"$here/scripts/setup.sh"
# clang and its libFuzzer runtime (a separate package from the compiler on Debian)
if ! command -v clang++ >/dev/null || ! compgen -G "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a" >/dev/null; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq clang libclang-rt-14-dev >/dev/null
fi
cmake -S "$here" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DBKETC_SANITIZE=address \
  -DBKETC_FUZZ_COVERAGE=ON -DBKETC_BUILD_TESTS=OFF -DBKETC_BUILD_BENCH=OFF >/dev/null

# target name and its folder under fuzz/
targets=(bkdreader_fuzz:model package_fuzz:package customization_fuzz:customization
         constraintdata_fuzz:constraints exclusions_fuzz:exclusions namepattern_fuzz:namepattern)
names=()
for t in "${targets[@]}"; do names+=("${t%%:*}"); done
cmake --build "$dir" -j2 --target "${names[@]}"

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
failed=0
for t in "${targets[@]}"; do
  name=${t%%:*}
  area=${t##*:}
  found="$dir/found/$name"
  mkdir -p "$found"
  log="$dir/$name.log"
  if (cd "$dir" && "./fuzz/$name" -max_total_time="$seconds" -runs="$runs" -timeout=10 \
        -rss_limit_mb=2048 -print_final_stats=1 "$found" "$here/fuzz/$area/corpus") >"$log" 2>&1; then
    status=ok
  else
    status=FAILED
    failed=1
    tail -n 40 "$log"
  fi
  execs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo 0)
  cov=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1 | grep -o '[0-9]*' || echo 0)
  echo "fuzz target=$name status=$status executions=$execs coverage=$cov seconds_limit=$seconds"
done
exit $failed
