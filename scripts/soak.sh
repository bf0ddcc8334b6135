#!/usr/bin/env bash
# Loads many random models and compares each with the reference implementation, to the bit.
#
#     scripts/soak.sh [COUNT] [FIRST]
#
# COUNT models (100000 by default) from the seed FIRST (1 by default) on, spread over all
# processors. A model that is not loaded as expected is shrunk to a few lines and shown,
# with its seed and what differs; the exit status is then non-zero. Builds in build/soak.
#
#     ORV_SOAK_PRESET=asan scripts/soak.sh 5000
#
# does the same under the address and undefined-behaviour sanitizers, in build/soak-asan.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

expect_arguments 2 "$@"
count=${1:-100000}
first=${2:-1}
[[ $count =~ ^[1-9][0-9]{0,8}$ ]] || wrong_usage "COUNT is '$count': a number above 0"
[[ $first =~ ^(0|[1-9][0-9]{0,8})$ ]] || wrong_usage "FIRST is '$first': a seed"

preset=${ORV_SOAK_PRESET:-release}
build_dir=$repository/build/soak
[[ $preset == release ]] || build_dir+=-$preset

bash "$repository/scripts/setup.sh" build test
say "building in $build_dir"
configure "$preset" "$build_dir" -DORV_BUILD_TESTS=ON -DORV_BUILD_APPS=OFF
build "$build_dir" --target RandomModelsTest

set_sanitizer_options

logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT

# soak_part NUMBER FIRST COUNT: one program, its output in a file of its own.
soak_part() {
  ORV_RANDOM_MODELS_FIRST=$2 ORV_RANDOM_MODELS_COUNT=$3 \
    "$build_dir/tests/reference/RandomModelsTest" \
    --gtest_filter=RandomModels.AreLoadedAsByTheReference >"$logs/$1" 2>&1
}

parts=$(job_count)
((parts <= count)) || parts=$count
pids=()
for ((part = 0; part < parts; ++part)); do
  start=$((first + count * part / parts))
  end=$((first + count * (part + 1) / parts))
  say "seeds $start to $((end - 1))"
  soak_part "$part" "$start" "$((end - start))" &
  pids+=($!)
done

failed=0
for part in "${!pids[@]}"; do
  if ! wait "${pids[part]}"; then
    cat "$logs/$part"
    failed=1
  fi
done
((failed == 0)) || die "not all models were loaded as expected"
say "$count models, all loaded as expected"
