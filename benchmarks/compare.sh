#!/usr/bin/env bash
# Loads the same files with this library and with others, in turn, and writes tables
# and a chart of what they took.
#
#     benchmarks/compare.sh [--sizes MB,MB...] [--rounds N] [--lines-up-to MB]
#                           [--rules-up-to MB] [--assimp-up-to MB] [--growth MB,MB...]
#                           [--fast-obj FOLDER] [MODEL.obj...]
#
# Each model is repeated side by side up to each size, and loaded once more with the
# sizes of --growth, by this library only, many times in one process. Without a model
# there are five of samples/: positions only, normals, texture coordinates, many
# materials, and those without normals ("MODEL.obj:v/vt"). What comes out is
# build/compare/table.md, chart.svg and results.json. Other build and result folders:
# ORV_BENCH_BUILD and ORV_BENCH_OUT.
#
# fast_obj takes part where FOLDER has its header, fast_obj.h. Debian has no package of
# it, but the source of the package meshoptimizer has it in extern/ ("apt-get source
# meshoptimizer").
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

build_dir=${ORV_BENCH_BUILD:-$repository/build/bench}
out=${ORV_BENCH_OUT:-$repository/build/compare}

answer_help "$@"
options=() models=() fast_obj_dir=
contestants=(load_orv load_rules load_tinyobj load_assimp)
while (($# > 0)); do
  case $1 in
    --fast-obj)
      [[ -e ${2-}/fast_obj.h ]] || wrong_usage "$1 takes a folder with fast_obj.h"
      fast_obj_dir=$(cd "$2" && pwd)
      contestants+=(load_fast_obj)
      options+=("$1")
      shift
      ;;
    --*)
      (($# > 1)) || wrong_usage "$1 takes a value"
      options+=("$1" "$2")
      shift
      ;;
    *) models+=("$1") ;;
  esac
  shift
done
if ((${#models[@]} == 0)); then
  for name in generated_normals quad_sphere specular_map lighthouse; do
    models+=("$repository/samples/$name.obj")
  done
  models+=("$repository/samples/lighthouse.obj:v/vt")
fi

bash "$repository/scripts/setup.sh" build bench
configure release "$build_dir" -DORV_BUILD_BENCHMARKS=ON -DORV_BUILD_TESTS=OFF \
  -DORV_FAST_OBJ_DIR="$fast_obj_dir"
build "$build_dir" --target repeat_model "${contestants[@]}"
python3 "$repository/benchmarks/compare.py" "$build_dir/benchmarks" "$out" "${models[@]}" \
  ${options[@]+"${options[@]}"} --small "$repository/samples/negative_indices.obj" \
  "$repository/samples/concave_polygons.obj"
say "see $out/table.md and $out/chart.svg"
