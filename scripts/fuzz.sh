#!/bin/sh
# Fuzzes every target for a bounded time, one at a time: scripts/fuzz.sh [SECONDS] [TARGET...]
#
# Builds the fuzz preset (clang, libFuzzer, ASan+UBSan; build/fuzz), then runs each target for SECONDS
# (60 by default) at the lowest priority, starting from the committed corpus and regression inputs and
# its dictionary. New inputs go to build/fuzz/corpus/<target>/ (kept between runs; the committed corpus
# is only read), findings to build/fuzz/findings/. Prints per target: executions, coverage (libFuzzer's
# cov and ft), and findings. Exits 1 when there were findings.
set -eu

cd "$(dirname "$0")/.."
seconds=${1:-60}
[ $# -gt 0 ] && shift
targets=${*:-"enum_list utf8 split_int skin_metadata text_styles number_text descriptions patch modules"}

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j 2

build=build/fuzz
# Fontconfig's caches live as long as the process: not leaks of ours (the tests suppress them the same way).
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
mkdir -p "$build/findings" "$build/logs"
status=0
printf '%-14s %12s %8s %8s  %s\n' target executions cov ft findings
for t in $targets; do
    work="$build/corpus/$t"
    mkdir -p "$work"
    seeds="fuzz/corpus/$t"
    [ -d "fuzz/regressions/$t" ] && seeds="$seeds fuzz/regressions/$t"
    log="$build/logs/$t.log"
    before=$(ls "$build/findings" | grep -c "^$t-" || true)
    # Inputs up to 4 KiB (16 for the patch language, whose statements are long), 10 s and 2 GiB each.
    maxlen=4096
    [ "$t" = patch ] && maxlen=16384
    # shellcheck disable=SC2086
    nice -n 19 "$build/fuzz/fuzz_$t" "$work" $seeds -dict="fuzz/dict/$t.dict" -max_total_time="$seconds" \
        -max_len=$maxlen -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$t-" >"$log" 2>&1 || true
    after=$(ls "$build/findings" | grep -c "^$t-" || true)
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    cov=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1 | cut -d' ' -f2)
    ft=$(grep -o 'ft: [0-9]*' "$log" | tail -n 1 | cut -d' ' -f2)
    found=$((after - before))
    what=$found
    [ "$found" -gt 0 ] && what="$found: $(ls -t "$build/findings" | grep "^$t-" | head -n "$found" | tr '\n' ' ')"
    printf '%-14s %12s %8s %8s  %s\n' "$t" "${runs:-?}" "${cov:-?}" "${ft:-?}" "$what"
    [ "$found" -gt 0 ] && status=1
done
exit $status
