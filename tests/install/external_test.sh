#!/usr/bin/env bash
# Builds libOrvCore and libOrvGL alone, installs them and moves them; builds libOrvModel and
# libOrvCheck against them, with ORV_PLATFORM=external, installs those elsewhere and moves them; and
# uses them from there.
#
#     external_test.sh SOURCE_DIR WORK_DIR static|shared [LIBDIR]
set -euo pipefail
# shellcheck source=tests/install/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
source_dir=$(cd "$1" && pwd) work_dir=$2 kind=$3 libdir=${4:-lib/x86_64-linux-gnu}
rm -rf "$work_dir"
mkdir -p "$work_dir"
work_dir=$(cd "$work_dir" && pwd)

# Compiled for this test alone, and run for a moment.
options=(-DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 "-DCMAKE_INSTALL_LIBDIR=$libdir"
  -DORV_BUILD_TESTS=OFF -DORV_BUILD_APPS=OFF)
[[ $kind == shared ]] || options+=(-DBUILD_SHARED_LIBS=OFF)
configure() { quietly cmake -G Ninja -S "$source_dir" -B "$work_dir/$1" "${options[@]}" "${@:2}"; }

configure platform-build
quietly cmake --build "$work_dir/platform-build" --target OrvCore OrvGL
for component in orv_platform_runtime orv_platform_development; do
  quietly cmake --install "$work_dir/platform-build" --prefix "$work_dir/platform-installed" \
    --component "$component"
done
mv "$work_dir/platform-installed" "$work_dir/platform"

configure model-build -DORV_PLATFORM=external "-DCMAKE_PREFIX_PATH=$work_dir/platform"
quietly cmake --build "$work_dir/model-build"
quietly cmake --install "$work_dir/model-build" --prefix "$work_dir/model-installed"
mv "$work_dir/model-installed" "$work_dir/model"
mv "$work_dir/platform" "$work_dir/platform-moved"

[[ ! -e $work_dir/model/include/OrvGL ]] || fail "headers of libOrvGL are installed with libOrvModel"
expect_relocatable "$work_dir/platform-moved" "$work_dir" "$source_dir"
expect_relocatable "$work_dir/model" "$work_dir" "$source_dir"
use_package "$kind" "$source_dir" "$work_dir" "$libdir" "$work_dir/model" "$work_dir/platform-moved"
