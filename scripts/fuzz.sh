#!/usr/bin/env bash
# Fuzzes the parts that read what strangers wrote.
#
#     scripts/fuzz.sh MINUTES [TARGET...]
#     scripts/fuzz.sh --replay [TARGET...]
#
# Runs each target of fuzz/ (XFuzzer.cpp is the target X; all of them without a name) for
# MINUTES under the address and undefined-behaviour sanitizers, one after the other, or
# ORV_FUZZ_JOBS at once. What a target finds worth keeping stays in build/fuzz-corpora/X for the
# next run; the seeds in fuzz/corpora are only read.
#
# --replay runs every seed and everything ever found (fuzz/regressions), and then some thousand
# inputs made from the seeds, the same ones each time, for 20 seconds at most and on all
# processors: a change is not held up by what it did not break. scripts/test.sh does so.
#
# Prints a table. Stops at the first finding, with the file and a non-zero exit status. Builds
# with clang in build/fuzz, and installs the packages that are missing first.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

replay_seconds=20
replay_options=(-seed=1 -runs=3000)
# Beyond these an input is a finding, too.
limits=(-timeout=10 -rss_limit_mb=2048)
# Long inputs are slow ones; long lines and large counts have tests of their own.
most_bytes=1024

build_dir=$repository/build/fuzz
seeds_dir=$repository/fuzz/corpora
regressions_dir=$repository/fuzz/regressions
findings_dir=$repository/build/fuzz-findings

all_targets=()
for source in "$repository"/fuzz/*Fuzzer.cpp; do
  all_targets+=("$(basename "$source" Fuzzer.cpp)")
done

answer_help "$@"
mode=${1-}
shift || true
targets=("$@")
((${#targets[@]})) || targets=("${all_targets[@]}")
for target in "${targets[@]}"; do
  [[ " ${all_targets[*]} " == *" $target "* ]] ||
    wrong_usage "no such target: '$target'; there are: ${all_targets[*]}"
done
case $mode in
  --replay)
    seconds=$replay_seconds
    mode_options=("${replay_options[@]}")
    # Of what is run every time, a busy machine is not to make a finding.
    limits+=(-timeout=60)
    jobs=$(job_count)
    ;;
  *)
    [[ $mode =~ ^[1-9][0-9]{0,4}$ ]] || wrong_usage "MINUTES is '$mode': a number above 0"
    seconds=$((60 * mode))
    mode_options=()
    jobs=${ORV_FUZZ_JOBS:-1}
    [[ $jobs =~ ^[1-9][0-9]?$ ]] || wrong_usage "ORV_FUZZ_JOBS is '$jobs': a number above 0"
    ;;
esac

bash "$repository/scripts/setup.sh" build fuzz
say "building in $build_dir"
configure fuzz "$build_dir" -DORV_WERROR=ON
build "$build_dir" --target orv_fuzzers

export UBSAN_OPTIONS=print_stacktrace=1
# In memory where that can be: material libraries are written there, one for each input.
logs=$(mktemp -d -p /dev/shm 2>/dev/null || mktemp -d)
trap 'rm -rf "$logs"' EXIT
mkdir -p "$findings_dir"

# kind_of TARGET: what its inputs are. Targets of one kind share seeds and a dictionary.
kind_of() {
  case $1 in
    CheckAgreement | OBJReader | Loader | LoaderPaths | Repair) echo OBJ ;;
    MTLReader) echo MTL ;;
    *) echo "$1" ;;
  esac
}

# corpus_of TARGET: where it keeps what it finds worth keeping.
corpus_of() {
  if [[ $mode == --replay ]]; then
    echo "$logs/corpus-$1"
  else
    echo "$repository/build/fuzz-corpora/$1"
  fi
}

# fuzz TARGET: its seeds and regressions are run before anything new.
fuzz() {
  local target=$1 kind corpus inputs=() options=() TIMEFORMAT='%U %S'
  kind=$(kind_of "$target")
  corpus=$(corpus_of "$target")
  mkdir -p "$corpus"
  for directory in "$seeds_dir/$kind" "$regressions_dir/$target"; do
    [[ ! -d $directory ]] || inputs+=("$directory")
  done
  [[ ! -e $repository/fuzz/$kind.dict ]] || options+=("-dict=$repository/fuzz/$kind.dict")
  { time TMPDIR=$logs "$build_dir/fuzz/${target}Fuzzer" "${limits[@]}" "${options[@]}" \
    -max_len="$most_bytes" -max_total_time="$seconds" "${mode_options[@]}" -print_final_stats=1 \
    -artifact_prefix="$findings_dir/$target-" \
    "$corpus" "${inputs[@]}" >"$logs/$target" 2>&1 </dev/null; } 2>"$logs/$target.time"
}

# statistic TARGET NAME: of the final statistics.
statistic() { awk -v name="stat::$2:" '$1 == name { print $2 }' "$logs/$1"; }

# fuzz_all TARGET...: as many at once as the mode allows; none any more after a finding.
fuzz_all() {
  local target
  for target in "$@"; do
    while (($(jobs -rp | wc -l) >= jobs)); do
      wait -n || true
    done
    [[ -z $(failed_targets) ]] || break
    { fuzz "$target" || touch "$logs/$target.failed"; } &
  done
  wait
}

failed_targets() { find "$logs" -name '*.failed' -exec basename {} .failed ';'; }

# cpu_seconds_of TARGET: of its time, what it had of a processor.
cpu_seconds_of() { awk '{ print int($1 + $2) }' "$logs/$1.time"; }

print_table() {
  local row='| %-14s | %11s | %7s | %11s | %8s | %19s |\n' target corpus files bytes findings
  # shellcheck disable=SC2059 # the format is the row's
  printf "$row" target executions seconds "CPU seconds" findings corpus
  echo "|----------------|------------:|--------:|------------:|---------:|--------------------:|"
  for target in "$@"; do
    [[ -e $logs/$target ]] || continue
    corpus=$(corpus_of "$target")
    files=$(find "$corpus" -type f | wc -l)
    bytes=$(find "$corpus" -type f -printf '%s\n' | awk '{ sum += $1 } END { print sum + 0 }')
    findings=0
    [[ ! -e $logs/$target.failed ]] || findings=1
    # shellcheck disable=SC2059
    printf "$row" "$target" "$(statistic "$target" number_of_executed_units)" "$seconds" \
      "$(cpu_seconds_of "$target")" "$findings" "$files files, $((bytes / 1024)) KiB"
  done
}

say "fuzzing for $seconds seconds each: ${targets[*]}"
fuzz_all "${targets[@]}"
print_table "${targets[@]}"
for target in $(failed_targets); do
  # What is said first, with the stack; libFuzzer names the file at the end.
  awk '/ERROR:|runtime error:|FAILED:/ { shown = 30 } shown-- > 0' "$logs/$target" >&2
  die "$target: $(grep -ao 'Test unit written.*' "$logs/$target" || echo "no input was written")"
done
