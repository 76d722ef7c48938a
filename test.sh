#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.   ./test.sh [dev|release|asan|tsan]
set -euo pipefail
cd "$(dirname "$0")"
source tools/setup.sh

preset=${1:-dev}
case "$preset" in
  dev | release | asan | tsan) ;;
  *) fail "unknown preset '$preset': use dev, release, asan or tsan" ;;
esac

install_packages
build "$preset"
# The thread sanitizer cannot place its shadow memory where the kernel randomises addresses widely.
[ "$preset" = tsan ] && wrap=(setarch -R) || wrap=()
export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/tests/tsan.supp ${TSAN_OPTIONS:-}"
export ASAN_OPTIONS="detect_stack_use_after_return=1 ${ASAN_OPTIONS:-}"
exec "${wrap[@]}" ctest --test-dir "build/$preset" --output-on-failure --parallel "${TEST_JOBS:-4}"
