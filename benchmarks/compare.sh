#!/usr/bin/env bash
# Loads the same files with this library and with others, in turn, and writes tables
# and a chart of what they took.
#
#     benchmarks/compare.sh [--sizes MB,MB...] [--rounds N] [--lines-up-to MB]
#                           [--rules-up-to MB] [--assimp-up-to MB] [--growth MB,MB...]
#                           [MODEL.obj...]
#
# Each model is repeated side by side up to each size, and loaded once more with the
# sizes of --growth, by this library only, many times in one process. Without a model
# there are five of samples/: positions only, normals, texture coordinates, many
# materials, and those without normals ("MODEL.obj:v/vt"). What comes out is
# build/compare/table.md, chart.svg and results.json. Other build and result folders:
# ORV_BENCH_BUILD and ORV_BENCH_OUT.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${ORV_BENCH_BUILD:-$root/build/bench}
out=${ORV_BENCH_OUT:-$root/build/compare}

options=() models=()
while (($# > 0)); do
  case $1 in
    -h | --help)
      print_usage
      exit 0
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
    models+=("$root/samples/$name.obj")
  done
  models+=("$root/samples/lighthouse.obj:v/vt")
fi

"$root/scripts/setup.sh" build bench
(cd "$root" && cmake --preset release -B "$build" -DORV_BUILD_BENCHMARKS=ON -DORV_BUILD_TESTS=OFF) >&2
cmake --build "$build" --target repeat_model load_orv load_rules load_tinyobj load_assimp >&2
python3 "$root/benchmarks/compare.py" "$build/benchmarks" "$out" "${models[@]}" \
  ${options[@]+"${options[@]}"} --small "$root/samples/negative_indices.obj" \
  "$root/samples/concave_polygons.obj"
say "see $out/table.md and $out/chart.svg"
