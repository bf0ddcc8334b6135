#!/usr/bin/env bash
# Builds the Debian packages: the libraries, what compiling against them takes, the command line,
# and the window.
#
#     scripts/package.sh [OUT_DIR]
#
# OUT_DIR is build/packages by default; packages that are there already are replaced. Installs the
# Debian packages that are missing first, builds in build/package, and ends with what lintian, which
# knows Debian's rules, says of the result: the exit status is 1 if there is an error but for the
# licence, which the project's owner has still to choose.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

expect_arguments 1 "$@"
out_dir=${1:-$repository/build/packages}
build_dir=$repository/build/package

bash "$repository/scripts/setup.sh" build package

# The same files from the same commit.
SOURCE_DATE_EPOCH=$(git -C "$repository" log -1 --format=%ct 2>/dev/null || date +%s)
export SOURCE_DATE_EPOCH
say "building in $build_dir"
CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
LDFLAGS=$(dpkg-buildflags --get LDFLAGS)
export CXXFLAGS LDFLAGS
rm -f "$build_dir/CMakeCache.txt"
configure release "$build_dir" -DORV_BUILD_TESTS=OFF -DORV_DEBIAN_PACKAGES=ON \
  -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_RPATH=ON \
  "-DCMAKE_INSTALL_LIBDIR=lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)"
build "$build_dir"

say "packing"
mkdir -p "$out_dir"
rm -f "$out_dir"/*orvmodel*.deb "$build_dir"/*.deb
(cd "$build_dir" && umask 022 && cpack -G DEB >&2)
mv "$build_dir"/*.deb "$out_dir"

say "lintian"
lintian --fail-on none "$out_dir"/*.deb | tee "$build_dir/lintian.txt" >&2
if grep '^E: ' "$build_dir/lintian.txt" | grep -v licen; then
  die "lintian found the errors above"
fi
printf '%s\n' "$out_dir"/*.deb
