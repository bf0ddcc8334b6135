# shellcheck shell=bash
# What the scripts of this directory share. Sourced, never run.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
script_name=$(basename "$0")

# say TEXT...: one line of progress. On stderr, so that stdout carries results only.
say() { printf '== %s\n' "$*" >&2; }

# die TEXT...: the reason, on one line, and out.
die() {
  printf '%s: %s\n' "$script_name" "$*" >&2
  exit 1
}

# wrong_usage TEXT...: like die, with the exit status of a wrong call.
wrong_usage() {
  printf "%s: %s (try '%s --help')\n" "$script_name" "$*" "$script_name" >&2
  exit 2
}

# print_usage: the comment block at the head of the running script is its manual.
print_usage() {
  awk 'NR == 1 { next } /^#/ { sub(/^# ?/, ""); print; next } { exit }' "$0"
}

# answer_help ARGUMENT...: prints the manual and ends when the first one asks for it.
answer_help() {
  case ${1-} in
    -h | --help)
      print_usage
      exit 0
      ;;
  esac
}

# expect_arguments MOST ARGUMENT...: for scripts without options: answers --help, refuses other
# options, and refuses more than MOST arguments.
expect_arguments() {
  local most=$1
  shift
  answer_help "$@"
  [[ ${1-} != -* ]] || wrong_usage "unknown option '$1'"
  (($# <= most)) || wrong_usage "unexpected argument '${*:most+1:1}'"
}

# set_sanitizer_options: how the sanitizers report, and what they pass over. They hold while
# building, too: listing the cases of a test program runs it. A leak in the OpenGL driver is
# not ours to mend.
set_sanitizer_options() {
  local support_dir=$repository/tests/support
  export ASAN_OPTIONS=strict_string_checks=1:detect_stack_use_after_return=1
  export UBSAN_OPTIONS=print_stacktrace=1
  export TSAN_OPTIONS=suppressions="'$support_dir/tsan.supp'"
  export LSAN_OPTIONS=print_suppressions=0:suppressions="'$support_dir/lsan.supp'"
}

# job_count: how many compilers or tests run at once.
job_count() { nproc 2>/dev/null || echo 2; }

# configure PRESET BUILD_DIR [CMAKE_ARGUMENT...]: the scripts keep build directories of
# their own, so that what they set never shows up in the one a developer works in.
configure() {
  local preset=$1 build_dir=$2
  shift 2
  local launcher=()
  if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  # Presets are looked up in the current directory, hence the subshell.
  (cd "$repository" && cmake --preset "$preset" -B "$build_dir" "${launcher[@]}" "$@" >&2)
}

# What ccache may pass over with precompiled headers; otherwise it keeps nothing made with them.
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}

# build BUILD_DIR [CMAKE_ARGUMENT...]
build() {
  local build_dir=$1
  shift
  cmake --build "$build_dir" --parallel "$(job_count)" "$@" >&2
}
