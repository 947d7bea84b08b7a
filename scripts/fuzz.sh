#!/usr/bin/env bash
# Builds the libFuzzer harnesses with clang and runs each for a bounded time.
#   FUZZ_SECONDS=60 bash scripts/fuzz.sh [harness...]
# Seeds come from the test corpora; anything that crashes is written to build-fuzz/findings/ and
# belongs, once fixed, under tests/data/fuzz-regressions/catalog or .../project, which tst_fuzzregressions
# replays together with the test corpora.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${RUNPLAN_FUZZ_BUILD_DIR:-$here/build-fuzz}"
seconds="${FUZZ_SECONDS:-60}"
"$here/scripts/install-deps.sh"
if ! command -v clang++ >/dev/null; then
    apt-get install -y -qq --no-install-recommends clang libclang-rt-14-dev >/dev/null
fi
harnesses=("$@")
[ ${#harnesses[@]} -eq 0 ] && harnesses=(fuzz_catalog fuzz_project fuzz_version)

CC=clang CXX=clang++ cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DRUNPLAN_FUZZ=ON \
    -DRUNPLAN_BUILD_TESTS=OFF -DRUNPLAN_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --parallel "$(nproc)" --target "${harnesses[@]}"

declare -A seeds=(
    [fuzz_catalog]="$here/tests/data/catalog $here/resources"
    [fuzz_project]="$here/tests/data/project $here/tests/data/app"
    [fuzz_version]="$here/tests/data/update"
)
mkdir -p "$build/findings"
export QT_QPA_PLATFORM=offscreen
for h in "${harnesses[@]}"; do
    corpus="$build/corpus/$h"
    mkdir -p "$corpus"
    for d in ${seeds[$h]}; do
        [ -d "$d" ] && find "$d" -maxdepth 1 -type f -size -256k -exec cp -n {} "$corpus/" \;
    done
    log="$build/$h.log"
    echo "== $h: ${seconds}s"
    "$build/bin/$h" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -max_len=65536 \
        -artifact_prefix="$build/findings/$h-" -print_final_stats=1 "$corpus" >"$log" 2>&1 || {
        echo "$h found a problem; see $log and $build/findings/"
        tail -n 40 "$log"
        exit 1
    }
    runs=$(grep -Eo 'stat::number_of_executed_units: *[0-9]+' "$log" | grep -Eo '[0-9]+$' || echo "?")
    echo "$h: $runs executions, no finding"
done
