#!/usr/bin/env bash
# Measures which lines and branches of src/Model the tests reach.
#
#     scripts/coverage.sh [CTEST_ARGUMENT...]
#
# Builds with counters, runs the library's tests, and writes
# lines.txt, branches.txt and, line by line, index.html to build/test-coverage/report.
# Ends with a non-zero exit status when a test fails, and below 98 percent of the lines or
# 90 percent of the branches. Branches that only exceptions take, and those the compiler
# made where the source has none, do not count.
#
# Arguments go to ctest, for a part of the tests: scripts/coverage.sh -R MTL
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

answer_help "$@"

least_lines=98
least_branches=90

build_dir=$repository/build/test-coverage
report_dir=$build_dir/report

bash "$repository/scripts/setup.sh" build test coverage
say "building in $build_dir"
configure coverage "$build_dir" -DORV_BUILD_TESTS=ON -DORV_BUILD_APPS=OFF
# The platform has tests of its own, which tell nothing of the library.
build "$build_dir" --target tests/all

# Counters add up from run to run, and those of older objects would be counted too.
find "$build_dir" -name '*.gcda' -delete
say "testing"
# Without optimisation the random models are slow, and the first hundreds reach all that they do.
ORV_RANDOM_MODELS_COUNT=${ORV_RANDOM_MODELS_COUNT-500} \
  ctest --test-dir "$build_dir/tests" --output-on-failure --no-tests=error \
  --parallel "$(job_count)" "$@" >&2

# count_objects DIRECTORY JSON: what was counted in one target's objects. gcovr works where
# it stands, and leaves files behind when it is stopped. It cannot merge a function that the
# portable sources define on another line, so functions are dropped; the lines are what counts.
count_objects() {
  (cd "$report_dir" &&
    gcovr --root "$repository" --filter "$repository/src/Model/" --exclude-throw-branches \
      --exclude-unreachable-branches --json "$2" "$1" >&2)
  python3 - "$2" <<'PYTHON'
import json, sys
with open(sys.argv[1]) as file:
    report = json.load(file)
for source in report["files"]:
    source["functions"] = []
with open(sys.argv[1], "w") as file:
    json.dump(report, file)
PYTHON
}

say "counting"
rm -rf "$report_dir"
mkdir -p "$report_dir"
parts=()
# Tests compile some of the library's sources once more, the portable way for one.
while read -r target; do
  part=$report_dir/$(basename "$target" .dir).json
  count_objects "$target" "$part"
  parts+=(--add-tracefile "$part")
done < <(find "$build_dir" -path '*src/Model/*.gcda' | sed 's|\(CMakeFiles/[^/]*\.dir\)/.*|\1|' | sort -u)

# report GCOVR_ARGUMENT...: once more from what was counted.
report() { (cd "$report_dir" && gcovr --root "$repository" "${parts[@]}" "$@"); }

report --txt "$report_dir/lines.txt"
report --branches --txt "$report_dir/branches.txt"
report --html-details "$report_dir/index.html" --html-title "src/Model"
cat "$report_dir/lines.txt" "$report_dir/branches.txt"
say "line by line: $report_dir/index.html"
report --txt /dev/null --print-summary \
  --fail-under-line "$least_lines" --fail-under-branch "$least_branches"
