#!/usr/bin/env bash
# Sets up a fresh machine, then builds and runs every test twice: under AddressSanitizer and
# UndefinedBehaviorSanitizer (dev), and optimised (release). Pass "dev" or "release" to run one only.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

presets=("${@:-dev release}")
read -r -a presets <<< "${presets[*]}"
for preset in "${presets[@]}"; do
  configure=$preset
  # CI treats warnings as errors.
  [[ "${CI:-}" == "true" ]] && configure="ci-$preset"
  echo "== $preset: configure, build, test"
  cmake --preset "$configure" > /dev/null
  cmake --build --preset "$configure"
  ctest --preset "$configure" -j 2
done
