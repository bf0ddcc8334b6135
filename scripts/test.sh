#!/usr/bin/env bash
# Builds everything, with warnings as errors, and runs every test: first the release
# build, then the tests of concurrent use under the thread sanitizer, then every test
# under the address and undefined-behaviour sanitizers. Before all of them, the mutants are
# looked at for whether they still fit, what fuzzing has found once is tried again, and every
# fuzz target runs for a moment.
#
#     scripts/test.sh
#
# Installs the packages that are missing first. Stops at the first build or test run that
# fails, with a non-zero exit status; the last lines are always the summary of the last
# test run. Builds in build/test-release, build/test-tsan, build/test-asan and build/fuzz.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

expect_arguments 0 "$@"

# A test that hangs is cut off long before it can hold up the whole run.
test_timeout_s=300

# build_in PRESET [CMAKE_ARGUMENT...]: in build/test-PRESET.
build_in() {
  local build_dir=$repository/build/test-$1
  say "$1: building in $build_dir"
  configure "$1" "$build_dir" -DORV_WERROR=ON -DORV_BUILD_TESTS=ON
  build "$build_dir" "${@:2}"
}

# test_in PRESET [CTEST_ARGUMENT...]
test_in() {
  say "$1: testing"
  ctest --test-dir "$repository/build/test-$1" --output-on-failure --no-tests=error \
    --parallel "$(job_count)" --timeout "$test_timeout_s" "${@:2}"
}

bash "$repository/scripts/setup.sh" build test

# The samples are generated, and committed. Python is no requirement, hence the condition.
if command -v python3 >/dev/null; then
  say "samples: comparing with what their generator writes"
  python3 "$repository/samples/make_samples.py" --check >&2
fi

say "mutants: looking whether every one still fits the sources"
bash "$repository/scripts/mutants.sh" --check

bash "$repository/scripts/fuzz.sh" --replay >&2

set_sanitizer_options

build_in release
test_in release

# The library has no threads of its own: what its users may do at once is little, and
# tested by few programs.
build_in tsan --target orv_thread_tests
test_in tsan --label-regex '^threads$'

build_in asan
test_in asan
