#!/usr/bin/env bash
# Mutation check: applies each mutation of tests/mutations.txt, one at a time, to a copy of
# the tree, rebuilds incrementally, runs the suite and reports which mutations no test kills.
# Run on demand (it takes minutes); see `bash scripts/mutation-check.sh --help`.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
exec python3 "$here/scripts/mutation_check.py" --repo "$here" "$@"
