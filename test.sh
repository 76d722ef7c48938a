#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.   ./test.sh [dev|release|asan|tsan] [--fast]
#   --fast       builds and runs only the tests labelled fast
#   fuzz --fast  the same with clang and the address and undefined behaviour sanitizers, in the build of fuzz.sh
set -euo pipefail
cd "$(dirname "$0")"
source tools/setup.sh

preset=dev
targets=()
chosen=()
for argument in "$@"; do
  case "$argument" in
    dev | release | asan | tsan | fuzz) preset=$argument ;;
    --fast) targets=(fast_tests) chosen=(--label-regex '^fast$') ;;
    *) fail "unknown argument '$argument': use dev, release, asan or tsan, and --fast" ;;
  esac
done

if [ "$preset" = fuzz ]; then
  # The limits of the system tests are not meant for this build.
  [ ${#targets[@]} -gt 0 ] || fail "the preset fuzz runs the fast tests only: ./test.sh fuzz --fast"
  PACKAGES+=("${CLANG_PACKAGES[@]}")
fi
install_packages
build "$preset" "${targets[@]}"
# The thread sanitizer cannot place its shadow memory where the kernel randomises addresses widely.
[ "$preset" = tsan ] && wrap=(setarch -R) || wrap=()
export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/tests/tsan.supp ${TSAN_OPTIONS:-}"
export ASAN_OPTIONS="detect_stack_use_after_return=1 ${ASAN_OPTIONS:-}"
exec "${wrap[@]}" ctest --test-dir "build/$preset" --output-on-failure --parallel "${TEST_JOBS:-4}" "${chosen[@]}"
