#!/usr/bin/env bash
# End-to-end cost of `blockara check` on generated models of five shapes and several sizes.
#
#   bench/batch_check.sh [SIZE...]        (default: 1000 10000 50000)
#
# Shapes, for a size of N blocks:
#   flat    one system of N Gain blocks
#   wide    N/50 subsystems of 50 Gain blocks each
#   deep    N/50 nested levels of 50 Gain blocks each (one subsystem leads to the next level)
#   masked  wide, with every subsystem masked
#   plant   6 levels, about 100 blocks per subsystem, every fifth subsystem masked
#
# One line per run: shape=S blocks=N seconds=X peak_rss_mb=X exit=E (exit is blockara's status:
# 0 no finding, 1 findings). Environment: BKETC_BUILD_DIR (default build), BENCH_DIR (where the
# models are written; default a temporary folder, removed afterwards).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BKETC_BUILD_DIR:-$here/build}
blockara=$build/app/blockara
[ -x "$blockara" ] || { echo "batch_check: build $blockara first" >&2; exit 2; }
[ -x /usr/bin/time ] || { echo "batch_check: needs /usr/bin/time (Debian package time)" >&2; exit 2; }
sizes=("$@")
[ ${#sizes[@]} -gt 0 ] || sizes=(1000 10000 50000)
work=${BENCH_DIR:-$(mktemp -d)}
[ -n "${BENCH_DIR:-}" ] || trap 'rm -rf "$work"' EXIT
mkdir -p "$work/prefs"

# generate SHAPE N > FILE: writes the model as .bkd XML.
generate() {
  awk -v shape="$1" -v n="$2" '
    function gains(count, indent,   i) {
      # Every twentieth name has a character the installed name rule refuses: a finding.
      for (i = 1; i <= count; ++i)
        printf "%s<Block Type=\"Gain\" Name=\"g%d%s\" SID=\"%d\"><P Name=\"Position\">%d %d 30 30</P></Block>\n",
               indent, i, (i % 20 == 0) ? "-x" : "", ++sid, 40 * ((i - 1) % 10), 50 * int((i - 1) / 10)
    }
    function open_subsystem(name, masked, indent, x) {
      printf "%s<Block Type=\"SubSystem\" Name=\"%s\" SID=\"%d\"><P Name=\"Position\">%d 600 40 40</P>", indent, name, ++sid, x
      if (masked) printf "<P Name=\"MaskType\">Bench</P>"
      printf "\n%s<System>\n", indent
    }
    function close_subsystem(indent) { printf "%s</System></Block>\n", indent }
    # plant: a subsystem at level `level` holds 100 blocks, `kids` of them subsystems.
    function plant(level, indent,   k, kids, name) {
      kids = (level < 6) ? branch : 0
      if (kids > budget) kids = budget
      budget -= kids
      gains(100 - kids, indent)
      for (k = 1; k <= kids; ++k) {
        name = "s" level "_" k
        open_subsystem(name, (++subsystems % 5) == 0, indent, 50 * k)
        plant(level + 1, indent " ")
        close_subsystem(indent)
      }
    }
    BEGIN {
      sid = 0
      printf "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<BlockDiagram Name=\"bench\" Kind=\"model\">\n<System>\n"
      if (shape == "flat") {
        gains(n, " ")
      } else if (shape == "wide" || shape == "masked") {
        for (s = 1; s <= n / 50; ++s) {
          open_subsystem("s" s, shape == "masked", " ", 50 * s)
          gains(50, "  ")
          close_subsystem(" ")
        }
      } else if (shape == "deep") {
        levels = n / 50
        for (l = 1; l <= levels; ++l) {
          gains(50, "")
          if (l < levels) open_subsystem("level" l, 0, "", 0)
        }
        for (l = 1; l < levels; ++l) close_subsystem("")
      } else if (shape == "plant") {
        # Subsystems to place below the root, and the fewest children per subsystem that reach
        # them within 6 levels.
        budget = int(n / 100) - 1
        if (budget < 0) budget = 0
        for (branch = 1; ; ++branch) {
          total = 0; width = 1
          for (l = 1; l < 6; ++l) { width *= branch; total += width }
          if (total >= budget) break
        }
        subsystems = 0
        plant(1, " ")
      }
      printf "</System>\n</BlockDiagram>\n"
    }'
}

for n in "${sizes[@]}"; do
  for shape in flat wide deep masked plant; do
    model=$work/$shape-$n.bkd
    generate "$shape" "$n" >"$model"
    set +e
    /usr/bin/time -f "%e %M" -o "$work/time" "$blockara" --prefdir "$work/prefs" check "$model" \
      >"$work/out" 2>"$work/err"
    status=$?
    set -e
    if [ "$status" -gt 1 ]; then
      echo "shape=$shape blocks=$n failed exit=$status: $(head -c 300 "$work/err")"
      continue
    fi
    # time writes "Command exited with non-zero status 1" first when there are findings.
    read -r seconds rss_kb < <(tail -n 1 "$work/time")
    awk -v s="$shape" -v n="$n" -v t="$seconds" -v k="$rss_kb" -v e="$status" \
      'BEGIN { printf "shape=%s blocks=%d seconds=%.2f peak_rss_mb=%.1f exit=%d\n", s, n, t, k / 1024, e }'
  done
done
