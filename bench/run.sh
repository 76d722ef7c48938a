#!/usr/bin/env bash
# Builds the release preset and prints one table of what the product costs. Never a test: look at the ratios.
#   bench/run.sh            all benchmarks but memory, which takes twenty minutes
#   bench/run.sh http road  some of them: codec log_line someip get_cycle http tls post writers mute_vehicle road fan_out sustained start memory
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/setup.sh

usual=(codec log_line someip get_cycle http tls post writers mute_vehicle road fan_out sustained start)
all=("${usual[@]}" memory)
chosen=("$@")
[ $# -gt 0 ] || chosen=("${usual[@]}")
for name in "${chosen[@]}"; do
  [[ " ${all[*]} " == *" $name "* ]] || fail "there is no benchmark $name, but ${all[*]}"
done

install_packages
build release benchmarks

# Each program prints the head of the table; one is enough.
for name in "${chosen[@]}"; do
  "build/release/bin/bench_$name" || fail "the benchmark $name did not end well"
done | awk '!/^work / || !heads++ { print; fflush() }'
