#!/usr/bin/env bash
# Prints the benchmark figures (engine; window and update check, offscreen) and the wall time of an
# unattended all-fixtures export beside a bare unattended start (target: the export within 1.5x the
# start). Never fails on time.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${RUNPLAN_BUILD_DIR:-$here/build}"
"$here/scripts/install-deps.sh" >&2
"$here/scripts/build.sh" >&2
export QT_QPA_PLATFORM=offscreen
bin="$build/bin"
echo "== engine benchmarks"
"$bin/runplan_bench"
echo "== undo and redo (target: 50 ms each)"
"$bin/runplan_bench_undo"
echo "== window and update check (offscreen)"
"$bin/runplan_bench_window" 2>/dev/null

runs="${BENCH_RUNS:-5}"
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
wall() { # median wall time in ms of running "$@" $runs times
    local times=()
    for _ in $(seq "$runs"); do
        local start end
        start=$(date +%s%N)
        "$@" >/dev/null 2>&1 || true
        end=$(date +%s%N)
        times+=($(( (end - start) / 1000000 )))
    done
    printf '%s\n' "${times[@]}" | sort -n | sed -n "$(( (runs + 1) / 2 ))p"
}
bare=$(wall "$bin/runplan" -nw)
export_ms=$(wall "$bin/runplan" -nw --maximize-all "$tmp/max.csv")
echo "== whole program (median wall time of $runs runs)"
printf '%-28s %-40s %s\n' "runplan -nw" "runplan -nw --maximize-all out.csv" "export / start (target 1.5)"
printf '%-28s %-40s %s\n' "$bare ms" "$export_ms ms" "$(awk -v e="$export_ms" -v b="$bare" 'BEGIN { if (b > 0) printf "%.2f", e / b; else print "-" }')"
