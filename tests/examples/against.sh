#!/usr/bin/env bash
# Builds every example against a package that is installed somewhere, and runs its test.
#
#     against.sh PREFIX BUILD_DIR WORK_DIR
#
# The tests are those of BUILD_DIR, built before; ctest runs them against its own package.
set -euo pipefail
prefix=$(cd "$1" && pwd)
tests=$(cd "$2/tests/examples" && pwd)
work_dir=$3
examples=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../examples" && pwd)

for folder in "$examples"/*/; do
  name=$(basename "$folder")
  cmake -G Ninja -S "$folder" -B "$work_dir/$name" -DCMAKE_BUILD_TYPE=Release \
    "-DCMAKE_PREFIX_PATH=$prefix" >/dev/null
  cmake --build "$work_dir/$name" >/dev/null
  ! ldd "$work_dir/$name/$name" | grep libOrv | grep -vF "=> $prefix/" || {
    echo "$name loads the libraries above, not those below $prefix" >&2
    exit 1
  }
  launcher=()
  if [[ $name == window ]]; then
    launcher=(xvfb-run --auto-servernum "--server-args=-screen 0 1024x768x24")
  fi
  ORV_EXAMPLE=$work_dir/$name/$name "${launcher[@]}" "$tests/${name^}ExampleTest" --gtest_brief=1
  echo "$name: passed"
done
