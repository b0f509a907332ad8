#!/usr/bin/env bash
# Builds the tool and prints the summary of the bundled example configuration.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target cmcfg_cli
./build/default/tools/cmcfg show --root examples/ "$@"
