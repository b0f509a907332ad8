#!/bin/sh
# Rewrites the golden outputs of the cmcfg tool (tests/tools/golden/ and tests/tools/roots/*.golden) from
# the current build, after an output changed on purpose. Review the result
# with "git diff tests/tools".
set -e
cd "$(dirname "$0")/.."
build="${1:-build/default}"
cmake --build "$build" --target cmcfg_tools_tests -j2
CMCFG_REGEN_GOLDEN=1 "$build/tests/cmcfg_tools_tests" --gtest_filter='Example/GoldenTest.*:Roots/RootCaseTest.*:WriteVerbsTest.DryRun*'
cmake --build "$build" --target cmcfg_man -j2
cp "$build/tools/man/cmcfg.1" tests/tools/golden/cmcfg.1
git status --short tests/tools/golden tests/tools/roots
