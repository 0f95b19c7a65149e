#!/usr/bin/env bash
# Builds the benchmarks and prints each figure as a ratio against peers of the same run. ./bench.sh [FIGURE...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
. scripts/setup.sh
setup build bench
configure bench
ninja -C build/bench
exec python3 bench/figures.py build/bench/bin "$@"
