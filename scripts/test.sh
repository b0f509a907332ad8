#!/usr/bin/env bash
# Builds and runs every test with the given preset (default: "default").
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
./scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
