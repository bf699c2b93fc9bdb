#!/usr/bin/env bash
# Sets up a fresh machine, builds the release preset and runs the demo patch in kxhost, printing every
# pin transmission it causes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

preset=release
# CI treats warnings as errors.
[[ "${CI:-}" == "true" ]] && preset=ci-release
echo "== $preset: configure, build"
cmake --preset "$preset" > /dev/null
cmake --build --preset "$preset"
echo "== kxhost run examples/patches/demo.kxp"
build/release/kxhost run examples/patches/demo.kxp
