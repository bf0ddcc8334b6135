# shellcheck shell=bash
# What the tests of this directory share. Sourced, never run.

# fail TEXT...: the reason, and out.
fail() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# quietly COMMAND...: its output only when it fails, which ends the test.
quietly() {
  local output status=0
  output=$("$@" 2>&1) || status=$?
  ((status == 0)) || fail "$* ended with $status:"$'\n'"$output"
}

# expect_output TEXT COMMAND...: the command succeeds and prints TEXT on stdout.
expect_output() {
  local expected=$1 output status=0
  shift
  output=$("$@") || status=$?
  [[ $status -eq 0 && $output == "$expected" ]] ||
    fail "$* ended with $status and printed:"$'\n'"$output"$'\n'"instead of:"$'\n'"$expected"
}

# What the consumer says of samples/textured_cube.obj: a cube of 6 faces and 24 different
# corners.
consumer_output='shared or static: KIND
24 vertices, 12 triangles
0 findings
3 components of type 0x1406
1 bundle'

# expect_consumer PROGRAM KIND SOURCE_DIR: the program of consumer/ says that it was compiled for
# libraries of this kind, shared or static, and what they make of a model.
expect_consumer() {
  expect_output "${consumer_output/KIND/$2}" "$1" "$3/samples/textured_cube.obj"
}

# expect_relocatable PREFIX OLD...: no text below PREFIX names one of the directories OLD, and no
# run path is absolute.
expect_relocatable() {
  local prefix=$1 old file
  shift
  for old in "$@"; do
    ! grep -rIlF -- "$old" "$prefix" || fail "the files above name $old"
  done
  while IFS= read -r -d '' file; do
    # shellcheck disable=SC2016  # the linker reads $ORIGIN
    readelf -d "$file" 2>/dev/null | grep -E 'R(UN)?PATH' | grep -v '\[\$ORIGIN[^:]*\]' >/dev/null &&
      fail "$file has the run path $(readelf -d "$file" | grep -E 'R(UN)?PATH')"
  done < <(find "$prefix" -type f \( -name '*.so*' -o -path '*/bin/*' \) -print0)
  return 0
}

# expect_loaded_from PREFIX PROGRAM: all of our libraries that the program loads are below PREFIX,
# and there is one.
expect_loaded_from() {
  local loaded
  loaded=$(ldd "$2" | grep libOrv) || fail "$2 loads none of our libraries"
  ! grep -vF "=> $1/" <<<"$loaded" || fail "$2 loads the libraries above, not those below $1"
}

# use_package KIND SOURCE_DIR WORK_DIR LIBDIR PREFIX...: builds the consumer against what is installed in
# the prefixes, by find_package and by pkg-config, and runs both programs.
use_package() {
  local kind=$1 source_dir=$2 work_dir=$3 libdir=$4 list path pc_path prefix
  shift 4
  list=$(IFS=';'; printf '%s' "$*")
  quietly cmake -G Ninja -S "$source_dir/tests/install/consumer" -B "$work_dir/by-cmake" \
    "-DCMAKE_PREFIX_PATH=$list"
  quietly cmake --build "$work_dir/by-cmake"

  path='' pc_path=''
  for prefix in "$@"; do
    path+=${path:+:}$prefix/$libdir
    pc_path+=${pc_path:+:}$prefix/$libdir/pkgconfig
  done
  # A run path leads to what a program itself takes, not to what its libraries take elsewhere.
  LD_LIBRARY_PATH=$([[ $# -eq 1 ]] || printf '%s' "$path") \
    expect_consumer "$work_dir/by-cmake/consumer" "$kind" "$source_dir"

  local static=()
  [[ $kind == shared ]] || static=(--static)
  # Qt is built such that programs have to be position independent.
  # shellcheck disable=SC2046  # flags are words
  quietly c++ -std=c++17 -fPIC "$source_dir/tests/install/consumer/main.cpp" \
    -o "$work_dir/by-pkg-config" \
    $(PKG_CONFIG_PATH=$pc_path pkg-config --cflags --libs "${static[@]}" OrvCheck OrvModel)
  LD_LIBRARY_PATH=$path expect_consumer "$work_dir/by-pkg-config" "$kind" "$source_dir"

  if [[ $kind == shared && $# -eq 1 ]]; then
    expect_loaded_from "$1" "$work_dir/by-cmake/consumer"
    LD_LIBRARY_PATH=$path expect_loaded_from "$1" "$work_dir/by-pkg-config"
  fi
}
