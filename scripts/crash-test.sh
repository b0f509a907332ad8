#!/usr/bin/env bash
# Kills saves at random instants, KILLS times (default 1000), and counts what
# the kills left behind; every count but the kills must be 0:
#   torn        the file was neither of the two contents a save writes
#   lost        a save that had returned success was replaced by an older one
#   stale-lock  the next writer did not get the lock within its timeout
#   stale-temp  a temporary file was still there after the next save
# A child process saves with UpdateDocument over and over; the parent
# kills it with SIGKILL, checks the file and saves once itself (the crash
# test of the unit tests, run longer).
#
#   scripts/crash-test.sh [KILLS]
# CMCFG_BUILD_DIR names the build folder (default: build/default, from the
# "default" preset).
set -euo pipefail
cd "$(dirname "$0")/.."
kills="${1:-1000}"
build="${CMCFG_BUILD_DIR:-build/default}"
if [ ! -f "$build/CMakeCache.txt" ]; then
  if [ "$build" = build/default ]; then
    cmake --preset default >/dev/null
  else
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  fi
fi
cmake --build "$build" --target cmcfg_platform_base_tests -j2 >/dev/null
tmp="$(pwd)/$build/tests/tmp"
mkdir -p "$tmp"

status=0
out="$(CMCFG_TEST_TMP="$tmp" CMCFG_CRASH_KILLS="$kills" \
  "$build/tests/cmcfg_platform_base_tests" --gtest_filter='SaveCrashTest.*' 2>&1)" || status=$?
line="$(grep '^crash run:' <<<"$out" || true)"
if [ -z "$line" ]; then
  echo "$out" >&2
  echo "crash-test: the run did not finish" >&2
  exit 2
fi
count() { sed -n "s/.* $1=\([0-9]*\).*/\1/p" <<<"$line"; }
echo "kills:      $(count kills)"
echo "torn:       $(count torn)"
echo "lost:       $(count lost)"
echo "stale-lock: $(count stale-lock)"
echo "stale-temp: $(count stale-temp)"
echo "${line#*(}" | sed 's/)$//; s/^/details:    /'
if [ "$status" -ne 0 ]; then
  grep -E 'Failure|Expected|actual' <<<"$out" >&2 || true
  echo "crash-test: FAILED" >&2
  exit 1
fi
echo "crash-test: passed"
