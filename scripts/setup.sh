#!/usr/bin/env bash
# Installs the Debian 12 packages that this project needs, those that are missing only.
#
#     scripts/setup.sh [build] [test] [fuzz] [bench] [coverage] [package]
#
#   build     what compiling the libraries, `orv` and `orv-view` takes, and an
#             OpenGL driver that runs without a graphics card or a display
#   test      what the tests take beyond that
#   fuzz      clang, whose libFuzzer the fuzz targets are linked with
#   bench     Google Benchmark, and the libraries that benchmarks/compare.sh measures
#   coverage  what scripts/coverage.sh counts with
#   package   what scripts/package.sh makes Debian packages with
#
# Without a name: build and test. Runs as root or through sudo; needs neither when nothing is
# missing.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

build_packages=(
  # The tools. The compiler brings the runtimes of its sanitizers along.
  cmake ninja-build g++ pkg-config
  # Reading numbers; headers only.
  libfast-float-dev
  # Qt 5 Core, Gui and Widgets. PNG is built into Gui; its package holds the JPEG plugin.
  qtbase5-dev
  # The loader of OpenGL functions.
  libepoxy-dev
  # EGL and Mesa's software driver: OpenGL with no card and no display.
  libegl1 libegl-mesa0 libgl1-mesa-dri
)
# OpenGL ES: what the libraries do in the context of a program that uses it. The models are those
# that another library is tested with.
# The reference is made, JSON is held against its schemas, and the programs of the documents are
# built, those for other libraries, too. The window is tested on a display without a screen, whose
# OpenGL is GLX's; it writes with that font. What is built with Assimp links zlib, whose headers and
# links its package does not ask for.
test_packages=(libgtest-dev libgmock-dev libgles2 assimp-testmodels doxygen python3-jsonschema
  libtinyobjloader-dev libassimp-dev zlib1g-dev xvfb xauth libgl1 libglx-mesa0 fonts-dejavu-core
  # Exported headers are compiled with it, too.
  clang)
# The runtime is only recommended by the compiler, and the symbolizer of llvm makes names and
# lines of the addresses in reports.
fuzz_packages=(clang libclang-rt-14-dev llvm)
bench_packages=(libbenchmark-dev libtinyobjloader-dev libmeshoptimizer-dev libassimp-dev zlib1g-dev
  python3)
coverage_packages=(gcovr)
package_packages=(dpkg-dev file git lintian)

is_installed() {
  [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# as_root COMMAND...: through sudo where we are not root already.
as_root() {
  if [[ $(id -u) -eq 0 ]]; then
    "$@"
  else
    sudo "$@"
  fi
}

# quietly COMMAND...: its output only when it fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 || status=$?
  if ((status != 0)); then
    cat "$log" >&2
  fi
  rm -f "$log"
  return "$status"
}

install_packages() {
  command -v apt-get >/dev/null ||
    die "this system has no apt-get; install what the Debian packages '$*' hold by other means"
  [[ $(id -u) -eq 0 ]] || command -v sudo >/dev/null ||
    die "neither root nor sudo; ask someone who may: apt-get install $*"

  say "installing $*"
  # A repository that does not answer need not be one of those the packages come from.
  quietly as_root apt-get -q update || say "apt-get update failed; trying with the lists at hand"
  quietly as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get -q -y --no-install-recommends install "$@" || die "could not install $*"
}

answer_help "$@"
wanted=()
for group in "${@:-all}"; do
  case $group in
    build) wanted+=("${build_packages[@]}") ;;
    test) wanted+=("${test_packages[@]}") ;;
    fuzz) wanted+=("${fuzz_packages[@]}") ;;
    bench) wanted+=("${bench_packages[@]}") ;;
    coverage) wanted+=("${coverage_packages[@]}") ;;
    package) wanted+=("${package_packages[@]}") ;;
    all) wanted+=("${build_packages[@]}" "${test_packages[@]}") ;;
    *) wrong_usage "no such group of packages: '$group'" ;;
  esac
done

missing=()
for package in "${wanted[@]}"; do
  is_installed "$package" || missing+=("$package")
done
if ((${#missing[@]} > 0)); then
  install_packages "${missing[@]}"
fi
