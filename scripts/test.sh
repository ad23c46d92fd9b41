#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
#   scripts/test.sh              the normal build (build/)
#   scripts/test.sh --sanitize   AddressSanitizer + UndefinedBehaviorSanitizer (build-asan/)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
dir="$root/build"
opts=()
if [[ "${1:-}" == "--sanitize" ]]; then
  dir="$root/build-asan"
  opts=(-DNEWSREADER_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug -DNEWSREADER_BUILD_BENCH=OFF)
  shift
fi
"$root/scripts/build.sh" "$dir" "${opts[@]}"
cd "$dir"
ctest --output-on-failure -j "$(nproc)" "$@"
