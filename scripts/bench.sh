#!/usr/bin/env bash
# Prints the benchmark figures (engine; window and update check, offscreen) and the wall and CPU time
# of an unattended all-fixtures export beside a bare unattended start (target: the export within 1.5x
# the start). Never fails on time.
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
median() { sort -n | sed -n "$(( (runs + 1) / 2 ))p"; }
measure() { # "wall cpu": the medians in ms of running "$@" $runs times (cpu = user + sys)
    local walls=() cpus=() TIMEFORMAT='%R %U %S'
    for _ in $(seq "$runs"); do
        local r u s
        read -r r u s < <({ time "$@" >/dev/null 2>&1; } 2>&1 | tail -1) || true
        walls+=("$(awk -v r="$r" 'BEGIN { printf "%d", r * 1000 }')")
        cpus+=("$(awk -v u="$u" -v s="$s" 'BEGIN { printf "%d", (u + s) * 1000 }')")
    done
    echo "$(printf '%s\n' "${walls[@]}" | median) $(printf '%s\n' "${cpus[@]}" | median)"
}
ratio() { awk -v e="$1" -v b="$2" 'BEGIN { if (b > 0) printf "%.2f", e / b; else print "-" }'; }
read -r bare bare_cpu < <(measure "$bin/runplan" -nw)
read -r export_ms export_cpu < <(measure "$bin/runplan" -nw --maximize-all "$tmp/max.csv")
echo "== whole program (median of $runs runs)"
printf '%-22s %-36s %s\n' "runplan -nw" "runplan -nw --maximize-all out.csv" "export / start (target 1.5)"
printf '%-22s %-36s %s\n' "wall $bare ms" "wall $export_ms ms" "$(ratio "$export_ms" "$bare")"
printf '%-22s %-36s %s\n' "cpu $bare_cpu ms" "cpu $export_cpu ms" "$(ratio "$export_cpu" "$bare_cpu")"
