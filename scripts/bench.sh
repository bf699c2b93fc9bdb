#!/usr/bin/env bash
# Builds the release preset's benchmark programs (and only what they need), runs every one of them with
# a fixed number of repetitions, the pack's benchmarks and their baselines interleaved at random within
# each program, and writes the summary table (benchmark, pack, baseline, ratio) into docs/performance.md
# between its summary markers, with the machine and its load.
#
#   scripts/bench.sh [--repetitions N] [--wait-for-load LOAD]
#
# --wait-for-load waits (up to 30 minutes) until the one-minute load average is at most LOAD before
# measuring: on a shared machine other work moves the figures. Results: build/release/bench-results/.
set -euo pipefail
cd "$(dirname "$0")/.."

repetitions=5
wait_load=""
while [[ $# -gt 0 ]]; do
  case "$1" in
    --repetitions) repetitions="$2"; shift 2 ;;
    --wait-for-load) wait_load="$2"; shift 2 ;;
    *) echo "usage: scripts/bench.sh [--repetitions N] [--wait-for-load LOAD]" >&2; exit 2 ;;
  esac
done

cmake --preset release > /dev/null
programs=()
for source in bench/*_bench.cpp; do
  programs+=("$(basename "$source" .cpp)")
done
# Programs whose platform or parts are missing are not configured; build the ones that are.
available=()
for program in "${programs[@]}"; do
  if cmake --build --preset release --target help | grep -q "^$program:"; then
    available+=("$program")
  fi
done
cmake --build --preset release -j 2 --target "${available[@]}"

load1() { cut -d' ' -f1 /proc/loadavg 2>/dev/null || sysctl -n vm.loadavg | tr -d '{}' | awk '{print $1}'; }
if [[ -n "$wait_load" ]]; then
  for _ in $(seq 60); do
    awk -v l="$(load1)" -v max="$wait_load" 'BEGIN { exit !(l <= max) }' && break
    echo "load average $(load1) is above $wait_load: waiting" >&2
    sleep 30
  done
fi

results=build/release/bench-results
rm -rf "$results"
mkdir -p "$results"
load_before=$(load1)
started=$(date +%s)
common=(--benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true
        --benchmark_min_time=0.2 --benchmark_out_format=json)
for program in "${available[@]}"; do
  echo "== $program" >&2
  binary=build/release/bench/$program
  if [[ $program == host_text_bench ]]; then
    # Each of its benchmarks reports the peak memory of its process, so each runs in one of its own.
    parts=()
    for filter in LoaderAlone 'ThroughSession/saver:0' LoaderToSaverDirect 'ThroughSession/saver:1'; do
      part="$results/$program.$(echo "$filter" | tr -c 'A-Za-z0-9' '_').part"
      "$binary" "${common[@]}" --benchmark_filter="^$filter" --benchmark_out="$part" > /dev/null
      parts+=("$part")
    done
    python3 -c 'import json, sys
runs = [json.load(open(p)) for p in sys.argv[2:]]
runs[0]["benchmarks"] = [b for r in runs for b in r["benchmarks"]]
json.dump(runs[0], open(sys.argv[1], "w"), indent=1)' "$results/$program.json" "${parts[@]}"
    rm -f "${parts[@]}"
  else
    "$binary" "${common[@]}" --benchmark_out="$results/$program.json" > /dev/null
  fi
done
minutes=$(( ($(date +%s) - started + 59) / 60 ))

cpu=$(grep -m1 'model name' /proc/cpuinfo 2>/dev/null | cut -d: -f2- | sed 's/^ *//' || true)
memory=$(awk '/MemTotal/ { printf "%.0f GB RAM", $2 / 1048576 }' /proc/meminfo 2>/dev/null || true)
system=$(. /etc/os-release 2>/dev/null && echo "$PRETTY_NAME" || uname -sr)
compiler=$(grep -m1 '^CMAKE_CXX_COMPILER:' build/release/CMakeCache.txt | cut -d= -f2-)
compiler="$("$compiler" --version | head -1)"
{
  echo "Recorded by \`scripts/bench.sh\` on $(date -u +%Y-%m-%d): ${cpu:-unknown processor}, $(nproc) cores," \
       "${memory:-unknown memory}, $system, $compiler, release preset (\`-O3\`). Load average (1 minute)" \
       "$load_before before the run and $(load1) after it (the benchmark itself keeps one core busy); the" \
       "run took about $minutes minutes. Medians of $repetitions repetitions, pack and baseline interleaved" \
       "at random in one program; CPU time unless marked wall."
} > "$results/machine.txt"
python3 scripts/bench_summary.py "$results" "$results/machine.txt" docs/performance.md
echo "summary written to docs/performance.md (and $results/summary.md)" >&2
