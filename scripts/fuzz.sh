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
# The targets make their configuration roots here, in memory where the
# system offers it (/dev/shm): they write a few files per input, which on a
# disk costs more than the reading they test. A crash leaves its root
# behind, so the folder goes when the script ends.
if [ -d /dev/shm ] && [ -w /dev/shm ]; then
  export TMPDIR="/dev/shm/cmcfg-fuzz-run-$$"
else
  export TMPDIR="$PWD/$out/tmp/run-$$"
fi
mkdir -p "$TMPDIR"
trap 'rm -rf "$TMPDIR"' EXIT
# A quarantine of 64 MB instead of 256: every input frees far less than
# that, so a use after free within one input is still caught, and freed
# memory is reused instead of faulting in fresh pages for each input.
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:quarantine_size_mb=64}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"

# The largest input a target's mutations make. Without it libFuzzer takes
# the largest seed, and the deliberately huge timeout-* inputs would make
# every input of these targets up to 200 or 400 KB; what they test is found
# in a few KB. (The regression inputs themselves are replayed whole first.)
max_len_of() {
  case "$1" in
    key_sequences) echo 8192 ;;
    caller_id) echo 4096 ;;
  esac
}

run_one() {
  local t="$1"
  local exe="$bin/${t}_fuzzer"
  local log="$out/logs/$t.log"
  local work="$out/corpus/$t"
  local findings="$out/findings/$t/"
  mkdir -p "$work" "$findings"
  local status=0
  # The regression inputs whole, one run each (the fuzzing below cuts seeds
  # longer than its -max_len).
  local regressions=()
  for f in "tests/fuzz/corpus/$t"/crash-* "tests/fuzz/corpus/$t"/timeout-* \
           "tests/fuzz/corpus/$t"/open-*; do
    [ -f "$f" ] && regressions+=("$f")
  done
  : >"$log"
  if [ ${#regressions[@]} -gt 0 ]; then
    "$exe" -timeout=25 -artifact_prefix="$findings" "${regressions[@]}" >>"$log" 2>&1 || status=$?
  fi
  if [ "$status" -eq 0 ]; then
    local args=(-max_total_time="$seconds" -print_final_stats=1 -timeout=25
                -artifact_prefix="$findings")
    [ -n "$runs" ] && args+=(-runs="$runs")
    local max_len
    max_len="$(max_len_of "$t")"
    [ -n "$max_len" ] && args+=(-max_len="$max_len")
    [ -f "tests/fuzz/$t.dict" ] && args+=(-dict="tests/fuzz/$t.dict")
    # The first folder takes what the run discovers; the seeds stay as they are.
    "$exe" "${args[@]}" "$work" "tests/fuzz/corpus/$t" >>"$log" 2>&1 || status=$?
  fi
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
