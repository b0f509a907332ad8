#!/usr/bin/env bash
# Installs what the build needs beyond a fresh machine of this kind.
set -euo pipefail
need=()
for pkg in cmake ninja-build g++ clang libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev; do
  dpkg -s "$pkg" >/dev/null 2>&1 || need+=("$pkg")
done
if [ ${#need[@]} -gt 0 ]; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${need[@]}"
fi
