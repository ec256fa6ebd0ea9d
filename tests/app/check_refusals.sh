#!/usr/bin/env bash
# `blockara check` refuses files it cannot use: exit status 2 and exactly one line on standard
# error that names the file and the problem. Usage: check_refusals.sh BLOCKARA RESOURCES MODEL
set -uo pipefail
blockara=$1 root=$2 model=$3
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
repeat() { local i; for ((i = 0; i < $2; ++i)); do printf '%s' "$1"; done; }

repeat '<a>' 100000 >"$dir/deep.xml"
{ printf '<rsccat><SystemList><System><ExclusionList>'; repeat '<a>' 70; repeat '</a>' 70
  printf '</ExclusionList></System></SystemList></rsccat>'; } >"$dir/ex70.xml"
echo '<RAConfiguration><Other/></RAConfiguration>' >"$dir/nocells.xml"
echo '<Other/>' >"$dir/other.xml"
echo '<rsccat><SystemList/></rsccat>' >"$dir/nolist.xml"
printf '<BlockDiagram Name="two">\n<System/>\n<System/>\n</BlockDiagram>\n' >"$dir/two.bkd"
{ printf '<BlockDiagram Name="deep">'; repeat '<System><Block Type="SubSystem" Name="s" SID="1">' 3000
  printf '\n'; } >"$dir/deep.bkd"

failures=0
# expect FILE PROBLEM ARGS...: the run exits 2 with one line holding "FILE" and PROBLEM.
expect() {
  local file=$1 problem=$2
  shift 2
  "$blockara" --root "$root" --prefdir "$dir/prefs" "$@" >"$dir/out" 2>"$dir/err"
  local status=$? lines
  lines=$(wc -l <"$dir/err")
  if [ "$status" -ne 2 ] || [ "$lines" -ne 1 ] || ! grep -qF -- "$file" "$dir/err" ||
     ! grep -qF -- "$problem" "$dir/err"; then
    echo "FAIL: blockara $* -> exit $status, $lines line(s):" && cat "$dir/err"
    failures=$((failures + 1))
  fi
}
expect "$dir/deep.xml:1:" "nested deeper than 4096 levels" check "$model" --config "$dir/deep.xml"
expect "$dir/deep.xml:1:" "nested deeper than 64 levels" check "$model" --exclusions "$dir/deep.xml"
expect "$dir/ex70.xml:1:" "nested deeper than 64 levels" check "$model" --exclusions "$dir/ex70.xml"
expect "$dir/nocells.xml" "not a customization file: no <CheckCellArray> in <RAConfiguration>" \
  check "$model" --config "$dir/nocells.xml"
expect "$dir/other.xml" "the root element is <Other>, expected <RAConfiguration>" \
  check "$model" --config "$dir/other.xml"
expect "$dir/other.xml" "the root element is <Other>, expected <rsccat>" \
  check "$model" --exclusions "$dir/other.xml"
expect "$dir/nolist.xml" "not an exclusions file: no <System> in <rsccat><SystemList>" \
  check "$model" --exclusions "$dir/nolist.xml"
expect "$dir/absent.xml" "cannot read the customization file" check "$model" --config "$dir/absent.xml"
expect "$dir/two.bkd:3:" "a second <System> in <BlockDiagram>" check "$dir/two.bkd"
expect "$dir/deep.bkd:1:" "nested deeper than 4096 levels" check "$dir/deep.bkd"
expect "$dir/absent.lua" "cannot read the script" "$dir/absent.lua"
expect "$dir" "cannot read the script" "$dir"
# A name rule built to backtrack, against a long name: the pattern library gives up, and the
# check names the rule instead of waiting for a pass that will never be styled.
mkdir -p "$dir/prefs"
cat >"$dir/rx.xml" <<'XML'
<RAConfiguration><CheckCellArray><Check><ID>orvanta.kabe.kb_0402</ID><Selected>true</Selected>
<InputParameters><InputParameter Name="Regular expression for prohibited names:"><Value>(a+)+$</Value>
</InputParameter></InputParameters></Check></CheckCellArray></RAConfiguration>
XML
{ printf '<BlockDiagram Name="rx"><System><Block Type="Gain" Name="'; repeat a 40; printf '!" SID="1"/>'
  printf '</System></BlockDiagram>\n'; } >"$dir/rx.bkd"

cp "$dir/rx.xml" "$dir/prefs/edittimecheckcustomization.xml"
expect "$dir/rx.bkd" "rule orvanta.kabe.kb_0402 gave up:" check "$dir/rx.bkd"
# A pattern the library's parser would loop on for ever is refused the same way.
sed 's/(a+)+\$/a?+(?#)b/' "$dir/rx.xml" >"$dir/prefs/edittimecheckcustomization.xml"
expect "$dir/rx.bkd" "gave up: a possessive repeat followed by a comment group" check "$dir/rx.bkd"
cp "$dir/rx.xml" "$dir/prefs/edittimecheckcustomization.xml"
# An explicit configuration that the preferences folder's file outranks is named as not used.
"$blockara" --root "$root" --prefdir "$dir/prefs" check "$model" --config "$dir/rx.xml" 2>&1 >/dev/null |
  grep -qF "$dir/rx.xml: not used: $dir/prefs/edittimecheckcustomization.xml" ||
  { echo "FAIL: --config outranked in silence"; failures=$((failures + 1)); }
rm -f "$dir/prefs/edittimecheckcustomization.xml"
exit $((failures > 0))
