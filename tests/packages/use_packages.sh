#!/usr/bin/env bash
# What fresh_root_test.sh runs in the new root, where packages, examples and samples are in /root.
set -euo pipefail
cd /root
export DEBIAN_FRONTEND=noninteractive

passed() { printf '%s: passed\n' "$1"; }
fail() {
  printf 'use_packages.sh: %s\n' "$*" >&2
  exit 1
}
install() { apt-get -q -y --no-install-recommends install "$@" >apt.log 2>&1 || { tail -n 20 apt.log; exit 1; }; }

apt-get -q update >apt.log 2>&1 || echo "apt-get update failed; trying with the lists at hand"
# Everything else that the packages need, they have to name. The driver is what they recommend.
install ./debs/liborvmodel1_*.deb ./debs/orvmodel-tools_*.deb libegl1 libegl-mesa0 libgl1-mesa-dri
[[ $(orv --version) == "orv $(dpkg-query -W -f '${Version}' liborvmodel1 | sed 's/-1$//')" ]] ||
  fail "the command line is of another version than its package"
passed "installing the command line"
orv check samples/textured_cube.obj
orv render samples/generated_normals.obj -o by-orv.png
passed "checking and rendering"
# The base root may be told to leave manuals out.
for page in orv.1 orv-render.1 orv-check.1; do
  dpkg-deb -c debs/orvmodel-tools_*.deb | grep "/man1/$page.gz$" >/dev/null || fail "there is no manual page $page"
done
bash -c 'source /usr/share/bash-completion/completions/orv.bash
  COMP_WORDS=(orv render --sh) COMP_CWORD=2; _orv; [[ ${COMPREPLY[*]} == --shading ]]' ||
  fail "'orv render --sh' is not completed to --shading"
passed "manual pages and completion"
if compgen -G 'debs/orvmodel-view_*.deb' >/dev/null; then
  install ./debs/orvmodel-view_*.deb
  QT_QPA_PLATFORM=offscreen orv-view --version | grep -x "orv-view .*" >/dev/null || fail "orv-view does not start"
  passed "the window's program"
fi

install ./debs/liborvmodel-dev_*.deb g++ cmake make
cmake -S examples/draw -B draw-build >cmake.log 2>&1 || { cat cmake.log; exit 1; }
cmake --build draw-build >cmake.log 2>&1 || { cat cmake.log; exit 1; }
draw-build/draw samples/generated_normals.obj by-cmake.png
passed "the README's program by find_package"
# shellcheck disable=SC2046  # flags are words
g++ -std=c++17 -fPIC examples/draw/main.cpp -o draw $(pkg-config --cflags --libs OrvModel)
./draw samples/generated_normals.obj by-pkg-config.png
passed "the README's program by pkg-config"
cmp by-cmake.png by-pkg-config.png

# shellcheck disable=SC2046
g++ -std=c++17 -fPIC packages/lit.cpp -o lit $(pkg-config --cflags --libs Qt5Gui)
./lit by-cmake.png
./lit by-orv.png
passed "light on the right side"
