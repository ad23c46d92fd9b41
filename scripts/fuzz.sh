#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (in build-fuzz, configured once) and runs each for a while.
# Usage: [FUZZ_OPTIONS=...] scripts/fuzz.sh [seconds per target, default 60] [target...]
# Targets: fuzz_attachmentlinks fuzz_messagebody fuzz_scenario (all when none is named). The corpus of each
# grows in build-fuzz/corpus/<target>; inputs that crash, leak or time out land in build-fuzz/findings/<target>.
# Exits non-zero when any target found something.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=$root/build-fuzz
seconds=${1:-60}
shift || true
targets=("$@")
if [[ ${#targets[@]} -eq 0 ]]; then
  targets=(fuzz_attachmentlinks fuzz_messagebody fuzz_scenario)
fi

if [[ ! -f "$dir/build.ninja" ]]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DNEWSREADER_FUZZ=ON -DNEWSREADER_BUILD_TESTS=OFF -DNEWSREADER_BUILD_BENCH=OFF
fi
cmake --build "$dir" --target "${targets[@]}"

# Seeds: the shipped scenario for the reader; the others start from nothing.
declare -A seeds=([fuzz_scenario]="$root/host/baseLib/scenario")
# Bodies get room to grow into the shapes that are slow to lay out. FUZZ_OPTIONS adds libFuzzer flags to all.
declare -A options=([fuzz_messagebody]="-max_len=65536")

export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 QT_LOGGING_RULES='*=false'
# Qt keeps caches for the life of the process; they are not leaks of one input.
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
status=0
for target in "${targets[@]}"; do
  corpus=$dir/corpus/$target
  findings=$dir/findings/$target
  log=$dir/logs/$target.log
  mkdir -p "$corpus" "$findings" "$(dirname "$log")"
  echo "== $target: ${seconds}s"
  set +e
  "$dir/bin/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$findings/" ${options[$target]:-} ${FUZZ_OPTIONS:-} "$corpus" ${seeds[$target]:-} >"$log" 2>&1
  code=$?
  set -e
  found=$(find "$findings" -type f | wc -l)
  runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo "?")
  echo "   exit $code, $runs inputs run, $found finding(s) in $findings (log: $log)"
  if [[ $code -ne 0 || $found -ne 0 ]]; then
    status=1
    grep -m1 -A12 -E 'ERROR: |runtime error|deadly signal|timeout' "$log" || true
  fi
done
exit $status
