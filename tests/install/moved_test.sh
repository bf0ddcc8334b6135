#!/usr/bin/env bash
# Installs what was built, moves it, and uses it from there.
#
#     moved_test.sh SOURCE_DIR BUILD_DIR WORK_DIR LIBDIR
#
# LIBDIR is the library folder below the prefix. Where the build was configured for another one,
# the sources are configured anew and the finished libraries and programs taken over: they are the
# same but for what installing makes of their run paths.
set -euo pipefail
# shellcheck source=tests/install/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
source_dir=$(cd "$1" && pwd) build_dir=$(cd "$2" && pwd) work_dir=$3 libdir=$4
rm -rf "$work_dir"
mkdir -p "$work_dir"
work_dir=$(cd "$work_dir" && pwd)

cached() { sed -n "s/^$1:[A-Z]*=//p" "$build_dir/CMakeCache.txt"; }

# configure_beside: a build folder for LIBDIR with the products of the given one.
configure_beside() {
  local options=() file name
  for name in CMAKE_BUILD_TYPE CMAKE_CXX_COMPILER ORV_BUILD_APPS ORV_PLATFORM BUILD_SHARED_LIBS; do
    options+=("-D$name=$(cached "$name")")
  done
  quietly cmake -G Ninja -S "$source_dir" -B "$work_dir/build" "${options[@]}" \
    -DORV_BUILD_TESTS=OFF "-DCMAKE_INSTALL_LIBDIR=$libdir"
  while IFS= read -r file; do
    file=${file%/}
    [[ -e $file ]] && continue
    name=${file#"$work_dir/build/"}
    [[ -e $build_dir/$name ]] || continue # ends the installation if it is needed
    mkdir -p "$(dirname "$file")"
    cp -a "$build_dir/$name" "$file"
  done < <(find "$work_dir/build" -name cmake_install.cmake -exec grep -ohE "\"$work_dir/build/[^\"]+\"" {} + |
    tr -d '"' | sort -u)
  build_dir=$work_dir/build
}

if [[ $(cached CMAKE_INSTALL_LIBDIR) != "$libdir" ]]; then
  configure_beside
fi
quietly cmake --install "$build_dir" --prefix "$work_dir/installed"
mv "$work_dir/installed" "$work_dir/moved"

expect_relocatable "$work_dir/moved" "$work_dir" "$build_dir" "$source_dir"
[[ -e $work_dir/moved/$libdir/libOrvModel.so ]] || fail "there is no library in $libdir"
expect_loaded_from "$work_dir/moved" "$work_dir/moved/bin/orv"
quietly "$work_dir/moved/bin/orv" check "$source_dir/samples/textured_cube.obj"
use_package shared "$source_dir" "$work_dir" "$libdir" "$work_dir/moved"
