#!/usr/bin/env bash
# Makes the pictures of the window in docs/viewer.md.
#
#     scripts/viewer_pictures.sh [BUILD_FOLDER]
#
# Opens the real window on a display without a screen (xvfb), and saves what it shows to
# docs/images/viewer*.png. Builds OrvWindowPictures first, in build/release by default, which has to be
# configured.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

expect_arguments 1 "$@"
build_dir=${1:-$repository/build/release}
[[ -f $build_dir/CMakeCache.txt ]] || die "'$build_dir' is not configured: cmake --preset release"
build "$build_dir" --target OrvWindowPictures
# The window shows paths: those of a folder that is called the same on every machine and at every run.
samples=/tmp/models
mkdir "$samples" || die "'$samples' is needed for the samples that the pictures show: move it away"
trap 'rm -rf "$samples"' EXIT
cp -r "$repository/samples/." "$samples"
bash "$repository/tests/viewer/with_display.sh" "$build_dir/tests/viewer/OrvWindowPictures" \
  "$samples" "$repository/docs/images"
printf 'The pictures are in %s\n' "$repository/docs/images"
