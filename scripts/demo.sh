#!/usr/bin/env bash
# Sets up a fresh machine, builds what the demo needs (the bundle, its descriptions and kxhost, from the
# release preset) and runs the demo panel: every widget of the pack on one panel, a short scripted
# session, and a numbered picture of the panel after each step.
#
#   scripts/demo.sh [FOLDER]    the pictures go into FOLDER, else $KX_DEMO_OUT, else build/demo
set -euo pipefail
cd "$(dirname "$0")/.."
out="${1:-${KX_DEMO_OUT:-build/demo}}"

echo "== Packages: installing what is missing (scripts/packages.txt)"
scripts/setup.sh

preset=release
# CI treats warnings as errors.
[[ "${CI:-}" == "true" ]] && preset=ci-release
echo "== Configuring the $preset preset in build/release"
cmake --preset "$preset" > /dev/null
echo "== Building the module bundle, its descriptions and kxhost (target kx_demo; tests and benchmarks are left out)"
cmake --build --preset "$preset" --target kx_demo

echo "== Running examples/patches/demo_panel.kxp"
mkdir -p "$out"
# Pictures of an earlier run would mix with this one's.
rm -f "$out"/[0-9][0-9]-*.png
build/release/kxhost run examples/patches/demo_panel.kxp --out "$out"

echo
echo "The pictures are in $out/:"
ls -1 "$out"/[0-9][0-9]-*.png
echo
echo "To play with the panel live: build/release/kxhost show examples/patches/demo_panel.kxp"
