#!/usr/bin/env bash
# Loads one model repeated 1, 4, 16 and 64 times and prints, as a table, what it takes for
# each byte of the file: CPU time and peak memory, without those of the graphics driver.
# Peaks are those of a program's first load; what any first load takes shows in the first
# row, whose model is a cube.
#
#     benchmarks/scaling.sh [MODEL.obj...]
#
# Without a model: two of samples/, repeated until they have 2 MB, are the models. The
# times are minima of ORV_SCALING_ROUNDS rounds (3) of three loads, in each of which every
# size has its turn, so that what else the machine does falls on all alike. The build
# folder is build/bench, or ORV_BENCH_BUILD.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

expect_arguments 999 "$@"

build_dir=${ORV_BENCH_BUILD:-$repository/build/bench}
rounds=${ORV_SCALING_ROUNDS:-3}
base_bytes=2000000

configure release "$build_dir" -DORV_BUILD_BENCHMARKS=ON
build "$build_dir" --target repeat_model load_orv
programs=$build_dir/benchmarks
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

models=("$@")
if ((${#models[@]} == 0)); then
  for name in lighthouse generated_normals; do
    "$programs/repeat_model" "$repository/samples/$name.obj" "$folder/$name.obj" "$base_bytes"
    cp "$repository/samples/$name".mtl "$folder" 2>/dev/null || true
    models+=("$folder/$name.obj")
  done
fi

# field NAME FILE LOADS: one of the numbers that load_orv prints.
field() {
  "$programs/load_orv" "$2" bytes "$3" | sed -E "s/.*\"$1\": ([0-9.]+).*/\\1/"
}

# measure FILE: milliseconds of the fastest of three loads, and the KiB of a first one.
measure() {
  printf '%s %s\n' "$(field leastCPU "$1" 3)" "$(field peakBeforeDriver "$1" 1)"
}

# print_rows NAME: of lines "file bytes milliseconds KiB", the least of each file.
print_rows() {
  awk -v name="$1" '
    !($1 in cpu) { order[++count] = $1; bytes[$1] = $2; cpu[$1] = $3; peak[$1] = $4 }
    $3 < cpu[$1] { cpu[$1] = $3 }
    $4 < peak[$1] { peak[$1] = $4 }
    END {
      for (i = 1; i <= count; ++i) {
        file = order[i]
        printf "| %s | %d | %.1f | %.2f | %.1f | %.2f |\n", name, 4 ^ (i - 1), bytes[file] / 1e6,
               cpu[file] * 1e6 / bytes[file], peak[file] * 1024 / 1e6,
               peak[file] * 1024 / bytes[file]
      }
    }'
}

printf '| model | times | MB | CPU, ns a byte | peak, MB | peak, bytes a byte |\n'
printf '|---|---:|---:|---:|---:|---:|\n'
cube=$repository/samples/textured_cube.obj
for ((round = 0; round < rounds; ++round)); do
  printf '%s %s %s\n' "$cube" "$(stat -c %s "$cube")" "$(measure "$cube")"
done | print_rows textured_cube
for model in "${models[@]}"; do
  [[ -r $model ]] || die "cannot read '$model'"
  name=$(basename "$model" .obj)
  size=$(stat -c %s "$model")
  files=()
  for times in 1 4 16 64; do
    file=$folder/$name-$times.obj
    "$programs/repeat_model" "$model" "$file" "$((times * size - size / 2))"
    files+=("$file")
  done
  cp "$(dirname "$model")"/*.mtl "$folder" 2>/dev/null || true
  for ((round = 0; round < rounds; ++round)); do
    for file in "${files[@]}"; do
      printf '%s %s %s\n' "$file" "$(stat -c %s "$file")" "$(measure "$file")"
    done
  done | print_rows "$name"
  rm -f "${files[@]}"
done
