#!/usr/bin/env bash
# Makes the library a part of another project, which must keep its variables and install nothing
# of ours.
#
#     subproject_test.sh SOURCE_DIR WORK_DIR [TARGET]
#
# Builds TARGET (records by default: a program that takes libOrvCore alone) and runs it.
set -euo pipefail
# shellcheck source=tests/install/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
source_dir=$(cd "$1" && pwd) work_dir=$2 target=${3:-records}
rm -rf "$work_dir"

for how in add_subdirectory FetchContent; do
  quietly cmake -G Ninja -S "$source_dir/tests/install/subproject" -B "$work_dir/$how" \
    "-DORV_SOURCE_DIR=$source_dir" "-DORV_HOW=$how"
  quietly cmake --install "$work_dir/$how" --prefix "$work_dir/$how-installed"
  [[ ! -e $work_dir/$how-installed ]] || fail "$how: there is something in the user's prefix"
done
quietly cmake --build "$work_dir/FetchContent" --target "$target"
if [[ $target == consumer ]]; then
  expect_consumer "$work_dir/FetchContent/consumer" static "$source_dir"
else
  expect_output '1 member' "$work_dir/FetchContent/records"
fi
