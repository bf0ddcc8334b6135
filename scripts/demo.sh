#!/usr/bin/env bash
# Renders a model to a picture, starting from a bare checkout.
#
#     scripts/demo.sh [MODEL.obj] [OUT.png]
#
# Installs the packages that are missing, builds the `orv` command line in build/demo,
# and renders MODEL (samples/lighthouse.obj by default) to OUT (demo.png in the current
# directory by default). Needs no display and no graphics card.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

expect_arguments 2 "$@"
model=${1:-$repository/samples/lighthouse.obj}
picture=${2:-demo.png}
# Before the minutes that setting up and building may take.
[[ -f $model && -r $model ]] || die "cannot read the model '$model'"
[[ -d $(dirname "$picture") ]] || die "no directory to write '$picture' to"

build_dir=$repository/build/demo
bash "$repository/scripts/setup.sh" build
say "building orv in $build_dir"
configure release "$build_dir" -DORV_BUILD_TESTS=OFF
build "$build_dir" --target orv

say "rendering $model"
"$build_dir/apps/orv/orv" render "$model" -o "$picture"
printf 'The picture is in %s\n' "$(realpath "$picture")"
