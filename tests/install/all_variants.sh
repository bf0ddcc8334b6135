#!/usr/bin/env bash
# Builds and installs the library in every variant, and uses each from where it was moved to:
# shared and static, our platform and an external one, below lib and below lib/x86_64-linux-gnu, and
# as a part of another project. Compiles every exported header alone with GCC and with Clang, as C++17
# and as C++20. Takes some 20 minutes on two processors; ctest runs a part of it.
#
#     all_variants.sh [WORK_DIR]
#
# WORK_DIR is build/variants by default.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tests/install/lib.sh
source "$here/lib.sh"
source_dir=$(cd "$here/../.." && pwd)
work_dir=${1:-$source_dir/build/variants}

# passed TEXT COMMAND...
passed() {
  "${@:2}" || fail "failed: $1"
  printf '%s: passed\n' "$1"
}

use_static() {
  local dir=$work_dir/static-$1
  rm -rf "$dir"
  mkdir -p "$dir"
  quietly cmake -G Ninja -S "$source_dir" -B "$dir/build" -DBUILD_SHARED_LIBS=OFF -DORV_BUILD_TESTS=OFF \
    "-DCMAKE_INSTALL_LIBDIR=$2"
  quietly cmake --build "$dir/build"
  quietly cmake --install "$dir/build" --prefix "$dir/installed"
  mv "$dir/installed" "$dir/moved"
  expect_relocatable "$dir/moved" "$dir" "$source_dir"
  quietly "$dir/moved/bin/orv" check "$source_dir/samples/textured_cube.obj"
  use_package static "$source_dir" "$dir" "$2" "$dir/moved"
}

read -ra flags < <(pkg-config --cflags Qt5Core Qt5Gui epoxy | sed 's/-I/-isystem /g')
for compiler in g++ clang++; do
  for standard in c++17 c++20; do
    passed "headers, $compiler, $standard" \
      bash "$here/check_headers.sh" alone "$source_dir" "$work_dir/headers" "$compiler" "$standard" "${flags[@]}"
  done
done
for libdir in lib lib/x86_64-linux-gnu; do
  name=${libdir//\//-}
  build_dir=$work_dir/shared-$name-build
  quietly cmake -G Ninja -S "$source_dir" -B "$build_dir" -DORV_BUILD_TESTS=OFF "-DCMAKE_INSTALL_LIBDIR=$libdir"
  quietly cmake --build "$build_dir"
  passed "shared, $libdir" bash "$here/moved_test.sh" "$source_dir" "$build_dir" "$work_dir/shared-$name" "$libdir"
  passed "static, $libdir" use_static "$name" "$libdir"
  for kind in shared static; do
    passed "$kind, external platform, $libdir" \
      bash "$here/external_test.sh" "$source_dir" "$work_dir/external-$kind-$name" "$kind" "$libdir"
  done
done
passed "part of another project" \
  bash "$here/subproject_test.sh" "$source_dir" "$work_dir/subproject" consumer
