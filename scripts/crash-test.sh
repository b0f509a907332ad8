#!/usr/bin/env bash
# Kills writers at random instants, KILLS times for each kind of write
# (default 1000), and counts what the kills left behind; every count but the
# kills must be 0:
#   torn        the file was not whole (not what a save writes)
#   lost        a write that had returned success was not there any more
#   stale-lock  the next writer did not get the lock within its timeout
#   stale-temp  a temporary file was still there after the next write
# The kinds of write:
#   document saves  UpdateDocument over and over (SaveCrashTest)
#   contacts        CMAgent::BlockContact, a new blocked contact each time
#   services        CMAgent::UpdateForwardService, the forward dialled from
#                   the phone replaced each time
#   auto-login      CMAgent::SaveAutologinUser, new phones and logins of a
#                   known one (WriteBackCrashTest)
# A child process writes; the parent kills it with SIGKILL, checks the file
# and what the child had reported done, and writes once itself.
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
cmake --build "$build" --target cmcfg_platform_base_tests cmcfg_services_tests -j2 >/dev/null
tmp="$(pwd)/$build/tests/tmp"
mkdir -p "$tmp"

failed=0
out=""
for suite in "cmcfg_platform_base_tests SaveCrashTest.*" \
             "cmcfg_services_tests WriteBackCrashTest.*"; do
  read -r binary filter <<<"$suite"
  part="$(CMCFG_TEST_TMP="$tmp" CMCFG_CRASH_KILLS="$kills" \
    "$build/tests/$binary" --gtest_filter="$filter" 2>&1)" || failed=1
  out+="$part"$'\n'
done
lines="$(grep '^crash run \[' <<<"$out" || true)"
if [ "$(grep -c . <<<"$lines")" -lt 4 ]; then
  echo "$out" >&2
  echo "crash-test: a run did not finish" >&2
  exit 2
fi

count() { sed -n "s/.* $2=\([0-9]*\).*/\1/p" <<<"$1"; }
printf '%-16s %7s %6s %6s %11s %11s\n' write kills torn lost stale-lock stale-temp
while IFS= read -r line; do
  kind="$(sed 's/^crash run \[\([^]]*\)\].*/\1/' <<<"$line")"
  printf '%-16s %7s %6s %6s %11s %11s\n' "$kind" "$(count "$line" kills)" \
    "$(count "$line" torn)" "$(count "$line" lost)" "$(count "$line" stale-lock)" \
    "$(count "$line" stale-temp)"
done <<<"$lines"
while IFS= read -r line; do
  kind="$(sed 's/^crash run \[\([^]]*\)\].*/\1/' <<<"$line")"
  echo "$kind: ${line#*(}" | sed 's/)$//'
done <<<"$lines"
if [ "$failed" -ne 0 ]; then
  grep -E 'Failure|Expected|actual|Which is|FAILED' <<<"$out" >&2 || true
  echo "crash-test: FAILED" >&2
  exit 1
fi
echo "crash-test: passed"
