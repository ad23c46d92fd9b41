#!/usr/bin/env bash
# Line and branch coverage of the module (plugin/ list/ thread/ composer/ dialogs/) and the host stand-in
# (host/) by the whole test suite, measured with gcovr in a separate build (build-cov/).
#   scripts/coverage.sh          prints the totals and one line per folder; writes build-cov/coverage.txt
# Environment: COVERAGE_BUILD_DIR (default build-cov/).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=${COVERAGE_BUILD_DIR:-$root/build-cov}
"$root/scripts/install-deps.sh"

if [[ ! -f "$dir/build.ninja" ]]; then
  cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 -g0" \
    -DCMAKE_CXX_FLAGS=--coverage -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage \
    -DCMAKE_MODULE_LINKER_FLAGS=--coverage -DNEWSREADER_BUILD_BENCH=OFF >/dev/null
fi
cmake --build "$dir"
find "$dir" -name '*.gcda' -delete
status=0
(cd "$dir" && ctest -j "$(nproc)" --output-on-failure) || status=$?

folders=(plugin list thread composer dialogs host)
filters=()
for folder in "${folders[@]}"; do
  filters+=(--filter "$root/$folder/")
done
cd "$root"
# Branches the compiler adds for exceptions are not behaviour of ours.
gcovr -r "$root" --object-directory "$dir" -j "$(nproc)" "${filters[@]}" \
  --exclude-throw-branches --exclude-unreachable-branches --json "$dir/coverage.json"

summary() {
  gcovr -r "$root" -a "$dir/coverage.json" "$@" --print-summary -o /dev/null |
    sed -nE 's/^(lines|branches): ([0-9.]+)% \(([0-9]+) out of ([0-9]+)\)/\2% (\3\/\4)/p' | paste -sd' '
}
{
  printf '%-10s %-24s %-24s\n' folder "lines" "branches"
  for folder in "${folders[@]}"; do
    read -r lines lcount branches bcount <<<"$(summary --filter "$root/$folder/")"
    printf '%-10s %-24s %-24s\n' "$folder" "$lines $lcount" "$branches $bcount"
  done
  module=()
  for folder in plugin list thread composer dialogs; do module+=(--filter "$root/$folder/"); done
  read -r lines lcount branches bcount <<<"$(summary "${module[@]}")"
  printf '%-10s %-24s %-24s\n' module "$lines $lcount" "$branches $bcount"
  read -r lines lcount branches bcount <<<"$(summary "${filters[@]}")"
  printf '%-10s %-24s %-24s\n' total "$lines $lcount" "$branches $bcount"
} | tee "$dir/coverage.txt"
exit $status
