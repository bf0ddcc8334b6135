#!/usr/bin/env bash
# Makes the pictures in docs/checks.md of a model before and after `orv fix`.
#
#     scripts/fix_pictures.sh [ORV]
#
# Renders samples/broken/broken_export.obj to docs/images/fix_before.png, and what `orv fix` makes
# of it to docs/images/fix_after.png. ORV is the program to use, build/release/apps/orv/orv by
# default; it is not built here.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1-} in
  -h | --help)
    print_usage
    exit 0
    ;;
  -*) wrong_usage "unknown option '$1'" ;;
esac
(($# <= 1)) || wrong_usage "too many arguments"
orv=${1:-$repository/build/release/apps/orv/orv}
[[ -x $orv ]] || die "there is no program '$orv': build it, or name another"

model=$repository/samples/broken/broken_export.obj
images=$repository/docs/images
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# In a folder of their own, so that the paths of textures have no part of this machine in them.
cp -r "$repository/samples/broken/." "$work"
"$orv" fix "$work/$(basename "$model")" -o "$work/fixed.obj"
# That faces are not drawn is what the first picture shows.
"$orv" render "$model" -o "$images/fix_before.png" --size 560x420 || [[ $? == 1 ]]
"$orv" render "$work/fixed.obj" -o "$images/fix_after.png" --size 560x420
printf 'The pictures are in %s\n' "$images"
