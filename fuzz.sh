#!/usr/bin/env bash
# Installs what is missing, builds, and feeds the fuzz targets in turn.   ./fuzz.sh SECONDS [target…]
set -euo pipefail
cd "$(dirname "$0")"
source tools/setup.sh

all=(http websocket json config deployment payload datagram stream discovery)
[[ "${1:-}" =~ ^[1-9][0-9]*$ ]] || fail "say for how many seconds each target is to run, and which: ${all[*]}"
seconds=$1
shift
chosen=("$@")
[ $# -gt 0 ] || chosen=("${all[@]}")
for target in "${chosen[@]}"; do
  [[ " ${all[*]} " == *" $target "* ]] || fail "there is no target $target, but ${all[*]}"
done

PACKAGES+=("${CLANG_PACKAGES[@]}")
install_packages
build fuzz fuzz_targets

here=build/fuzz
rm -rf "$here/seeds"
"$here/bin/fuzz_seeds" "$here/seeds" || fail "the first inputs could not be made"
# Slow machines need longer than a second for an input; what takes twenty hangs.
limits=(-timeout=20 -rss_limit_mb=2048 -max_len=4096)
export ASAN_OPTIONS="detect_stack_use_after_return=1:${ASAN_OPTIONS:-}"
export ASAN_SYMBOLIZER_PATH=${ASAN_SYMBOLIZER_PATH:-/usr/bin/llvm-symbolizer-14}

printf '%-12s %12s %10s %8s %10s\n' target executions 'a second' edges 'new units'
for target in "${chosen[@]}"; do
  corpus=$here/corpus/$target
  findings=$here/findings/$target
  log=$here/$target.log
  mkdir -p "$corpus" "$findings"
  options=()
  [ -e "fuzz/$target.dict" ] && options=(-dict="fuzz/$target.dict")
  # Threads free what others took: a check after each input would look again and again in vain. The one at the end finds a leak as well.
  [[ " http websocket datagram discovery " == *" $target "* ]] && options+=(-detect_leaks=0)
  before=$(ls "$findings" | wc -l)
  ended=0
  "$here/bin/fuzz_$target" "${limits[@]}" "${options[@]}" -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$findings/" \
    "$corpus" "$here/seeds/$target" >"$log" 2>&1 || ended=$?
  figure() { sed -n "s/^stat::$1: *//p" "$log"; }
  edges=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1 | cut -d ' ' -f 2) || edges=0
  printf '%-12s %12s %10s %8s %10s\n' "$target" "$(figure number_of_executed_units)" "$(figure average_exec_per_sec)" "$edges" "$(figure new_units_added)"
  [ "$ended" -eq 0 ] && continue
  grep -m1 -E '^(SUMMARY|ERROR|==[0-9]+==)' "$log" >&2 || true
  [ "$(ls "$findings" | wc -l)" -gt "$before" ] || fail "$target ended with status $ended and left no input: $log tells why"
  fail "$target found $findings/$(ls -t "$findings" | head -n 1); $log tells what happened"
done
