#!/usr/bin/env bash
# Loads every sample under valgrind, whose memory checker also sees what the sanitizers do
# not: the use of values that were never set.
#
#     scripts/valgrind.sh [MODEL.obj...]
#
# Without a model: those of samples/. Each goes through `orv info` and `orv dump`. The exit
# status is non-zero when one of them makes an error, or loses memory for good; only what
# the graphics driver does by itself is passed over (tests/support/valgrind.supp). Needs
# valgrind, and builds in build/valgrind.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

expect_arguments 999 "$@"
command -v valgrind >/dev/null || die "valgrind is missing: install the package valgrind"

models=("$@")
((${#models[@]} > 0)) || models=("$repository"/samples/*.obj)

build_dir=${ORV_VALGRIND_BUILD:-$repository/build/valgrind}
configure release "$build_dir" -DORV_BUILD_TESTS=OFF
build "$build_dir" --target orv
log=$(mktemp)
trap 'rm -f "$log"' EXIT

failed=0
for model in "${models[@]}"; do
  for command in info dump; do
    status=0
    # The driver compiles machine code while it runs, and keeps much of what it has.
    valgrind --quiet --error-exitcode=99 --leak-check=full --show-leak-kinds=definite \
      --errors-for-leak-kinds=definite --smc-check=all-non-file \
      --suppressions="$repository/tests/support/valgrind.supp" \
      "$build_dir/apps/orv/orv" "$command" "$model" >/dev/null 2>"$log" || status=$?
    if ((status != 0)); then
      say "orv $command $model: exit status $status"
      cat "$log" >&2
      failed=1
    fi
  done
  say "$(basename "$model")"
done
((failed == 0)) || die "not all models were loaded without an error"
say "${#models[@]} models, no errors"
