#!/usr/bin/env bash
# Configures (once) and builds one build tree. Usage: scripts/build.sh [build-dir] [extra cmake -D options]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=${1:-$root/build}
shift || true
if [[ ! -f "$dir/build.ninja" ]]; then
  cmake -S "$root" -B "$dir" -G Ninja "$@"
fi
cmake --build "$dir"
