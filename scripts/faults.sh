#!/usr/bin/env bash
# Fault injection: applies each fault of scripts/faults.txt to the sources, one at a time, rebuilds, runs the
# suite and reports which faults no test noticed. Every source file is restored after its fault, also when
# the run is interrupted or fails.
#   scripts/faults.sh                 all faults
#   scripts/faults.sh ID...           only these faults
#   scripts/faults.sh --check         only tell which faults still apply to the sources
# Environment: FAULTS_BUILD_DIR (default build-fault/), FAULTS_REPORT (default <build dir>/faults-report.txt),
# FAULTS_TIMEOUT seconds for one run of the suite (default 600).
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
list="$root/scripts/faults.txt"
dir=${FAULTS_BUILD_DIR:-$root/build-fault}
report=${FAULTS_REPORT:-$dir/faults-report.txt}
suite_timeout=${FAULTS_TIMEOUT:-600}
tool="$root/scripts/faults.py"

"$root/scripts/install-deps.sh"
if [[ "${1:-}" == "--check" ]]; then
  shift
  python3 "$tool" check "$root" "$list" "$@"
  exit $?
fi

mkdir -p "$dir"
backup="$dir/fault-backup"
target_file="$dir/fault-backup.path"

restore() {
  if [[ -f "$target_file" ]]; then
    # A plain copy gives the file a new time stamp, so the next build compiles the restored text again.
    cp "$backup" "$root/$(cat "$target_file")"
    rm -f "$target_file" "$backup"
  fi
}
trap restore EXIT
trap 'restore; exit 130' INT TERM
restore

if [[ ! -f "$dir/build.ninja" ]]; then
  # Fast compiles: no optimisation, no debug information, no benchmarks; a changed host library does not
  # relink everything that uses it.
  linker=()
  command -v ld.lld >/dev/null && linker=(-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld
    -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld -DCMAKE_MODULE_LINKER_FLAGS=-fuse-ld=lld)
  cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 -g0" \
    -DNEWSREADER_BUILD_BENCH=OFF -DCMAKE_LINK_DEPENDS_NO_SHARED=ON "${linker[@]}" >/dev/null || exit 1
fi

run_suite() {
  (cd "$dir" && timeout "$suite_timeout" ctest -j "$(nproc)" --stop-on-failure --output-on-failure) >"$1" 2>&1
}

echo "Building the unchanged sources in $dir"
if ! cmake --build "$dir" >"$dir/fault-build.log" 2>&1; then
  tail -30 "$dir/fault-build.log"
  echo "The unchanged sources do not build; no fault can be judged." >&2
  exit 1
fi
echo "Running the suite on the unchanged sources"
start=$(date +%s)
if ! run_suite "$dir/fault-clean.log"; then
  grep -E '\*\*\*|FAIL!' "$dir/fault-clean.log" | head -20
  echo "The suite fails on the unchanged sources; no fault can be judged." >&2
  exit 1
fi
echo "Suite passes in $(($(date +%s) - start)) s"

results="$dir/fault-results.tsv"
: >"$results"
mapfile -t ids < <(python3 "$tool" ids "$list" "$@")
for id in "${ids[@]}"; do
  log="$dir/fault-$id.log"
  start=$(date +%s)
  file=$(python3 "$tool" apply "$root" "$list" "$id" "$backup")
  status=$?
  if [[ $status -ne 0 ]]; then
    result="not applicable"
    caught_by="-"
  else
    echo "$file" >"$target_file"
    if ! cmake --build "$dir" >"$log" 2>&1; then
      result="not a valid fault (does not build)"
      caught_by="-"
    elif run_suite "$log"; then
      result="NOT CAUGHT"
      caught_by="-"
    else
      result="caught"
      # The first failing test function, else the first failing test executable.
      caught_by=$(grep -m1 -oE 'FAIL!  : [A-Za-z0-9_]+::[A-Za-z0-9_]+(\([^)]*\))?' "$log" | sed 's/FAIL!  : //')
      [[ -z "$caught_by" ]] &&
        caught_by=$(grep -m1 -oE 'Test +#[0-9]+: [A-Za-z0-9_]+ \.+ *\*\*\*[A-Za-z ]+' "$log" |
          sed -E 's/Test +#[0-9]+: ([A-Za-z0-9_]+) \.+ *\*\*\*(.*)/\1 (\2)/')
      [[ -z "$caught_by" ]] && caught_by="suite timed out or failed"
    fi
    restore
  fi
  printf '%s\t%s\t%s\t%s\n' "$id" "$result" "$caught_by" "$(($(date +%s) - start))" >>"$results"
  printf '%-32s %-12s %s\n' "$id" "$result" "$caught_by"
done

# The tree is left built from the unchanged sources.
cmake --build "$dir" >"$dir/fault-build.log" 2>&1

python3 "$tool" report "$list" "$results" >"$report"
echo
cat "$report"
echo "Report written to $report"
