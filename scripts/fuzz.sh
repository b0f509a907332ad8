#!/usr/bin/env bash
# Builds the libFuzzer targets (preset "fuzz") and runs each for a while
# with its seed corpus and dictionary; prints executions and findings per
# target and exits non-zero when any target found a crash.
#
#   scripts/fuzz.sh [-t SECONDS] [-n RUNS] [-j JOBS] [--no-build] [TARGET...]
#
#   -t SECONDS   time per target (default 60, or $FUZZ_TIME)
#   -n RUNS      stop a target after that many executions, if sooner
#   -j JOBS      targets run at once (default 1, or $FUZZ_JOBS)
#   --no-build   use the targets already built
#   TARGET       some of the targets (default: all)
#
# Seeds and regression inputs: tests/fuzz/corpus/<target>/ (read only here).
# What a run discovers goes to build/fuzz/corpus/<target>/, crashing inputs
# to build/fuzz/findings/<target>/, the output to build/fuzz/logs/<target>.log.
set -euo pipefail
cd "$(dirname "$0")/.."

ALL_TARGETS=(parse_document escape_roundtrip tone_file channel_specs caller_id
             key_sequences sip_address comma_list config_root)
seconds="${FUZZ_TIME:-60}"
jobs="${FUZZ_JOBS:-1}"
runs=""
build=1
targets=()
while [ $# -gt 0 ]; do
  case "$1" in
    -t) seconds="$2"; shift 2 ;;
    -n) runs="$2"; shift 2 ;;
    -j) jobs="$2"; shift 2 ;;
    --no-build) build=0; shift ;;
    -h|--help) sed -n '2,17p' "$0"; exit 0 ;;
    -*) echo "fuzz.sh: unknown option $1" >&2; exit 2 ;;
    *) targets+=("$1"); shift ;;
  esac
done
[ ${#targets[@]} -gt 0 ] || targets=("${ALL_TARGETS[@]}")

if [ "$build" -eq 1 ]; then
  ./scripts/setup.sh
  cmake --preset fuzz >/dev/null
  cmake --build --preset fuzz
fi

out=build/fuzz
bin="$out/tests/fuzz"
mkdir -p "$out/logs" "$out/tmp"
# The targets make their configuration roots here, not in /tmp; a crash
# leaves its root behind, so the folder goes when the script ends.
export TMPDIR="$PWD/$out/tmp/run-$$"
mkdir -p "$TMPDIR"
trap 'rm -rf "$TMPDIR"' EXIT
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"

run_one() {
  local t="$1"
  local exe="$bin/${t}_fuzzer"
  local log="$out/logs/$t.log"
  local work="$out/corpus/$t"
  local findings="$out/findings/$t/"
  mkdir -p "$work" "$findings"
  local args=(-max_total_time="$seconds" -print_final_stats=1 -timeout=25
              -artifact_prefix="$findings")
  [ -n "$runs" ] && args+=(-runs="$runs")
  [ -f "tests/fuzz/$t.dict" ] && args+=(-dict="tests/fuzz/$t.dict")
  # The first folder takes what the run discovers; the seeds stay as they are.
  local status=0
  "$exe" "${args[@]}" "$work" "tests/fuzz/corpus/$t" >"$log" 2>&1 || status=$?
  echo "$status" >"$out/logs/$t.status"
}

if [ ! -x "$bin/${targets[0]}_fuzzer" ]; then
  echo "fuzz.sh: $bin/${targets[0]}_fuzzer is missing; build first" >&2
  exit 2
fi

started=$(date +%s)
running=0
for t in "${targets[@]}"; do
  [ -x "$bin/${t}_fuzzer" ] || { echo "fuzz.sh: no target $t" >&2; exit 2; }
  rm -f "$out/logs/$t.status"
  echo "fuzzing $t for ${seconds}s"
  run_one "$t" &
  running=$((running + 1))
  if [ "$running" -ge "$jobs" ]; then
    wait -n || true
    running=$((running - 1))
  fi
done
wait || true

failed=0
printf '\n%-18s %12s %10s %8s  %s\n' target executions exec/s corpus result
for t in "${targets[@]}"; do
  log="$out/logs/$t.log"
  status=$(cat "$out/logs/$t.status" 2>/dev/null || echo 1)
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  corpus=$(find "$out/corpus/$t" -type f | wc -l)
  artifacts=$(sed -n 's/.*Test unit written to //p' "$log" | tr '\n' ' ')
  if [ "$status" -eq 0 ]; then
    result="ok"
  else
    failed=1
    kind=$(grep -m1 -oE 'ERROR: (AddressSanitizer|LeakSanitizer|libFuzzer): [a-z-]+|runtime error: .*|check failed: .*' "$log" || true)
    result="FINDING (exit $status) ${kind:-see $log} ${artifacts}"
  fi
  printf '%-18s %12s %10s %8s  %s\n' "$t" "${execs:-?}" "${rate:-?}" "$corpus" "$result"
done
echo "fuzzing took $(( $(date +%s) - started ))s"
exit "$failed"
