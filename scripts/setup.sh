#!/usr/bin/env bash
# Installs what the build needs beyond a fresh machine of this kind.
set -euo pipefail

install_missing() {
  local need=()
  for pkg in "$@"; do
    dpkg -s "$pkg" >/dev/null 2>&1 || need+=("$pkg")
  done
  if [ ${#need[@]} -gt 0 ]; then
    local sudo_cmd=""
    [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
    $sudo_cmd apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${need[@]}"
  fi
}

install_missing cmake ninja-build g++ clang libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev

# The fuzz preset: libFuzzer and the sanitizer runtimes of the installed
# clang (only recommended by it, so not always there), and llvm-symbolizer
# for readable stacks in the findings.
clang_major=$(clang++ --version | sed -n 's/.*clang version \([0-9][0-9]*\).*/\1/p' | head -n1)
if [ -n "$clang_major" ]; then
  install_missing "libclang-rt-${clang_major}-dev" "llvm-${clang_major}"
fi
