#!/usr/bin/env bash
# Writes the reference of the exported headers as HTML, with doxygen.
#
#     docs/reference/make.sh OUTPUT_FOLDER [ROOT]
#
# The first page is OUTPUT_FOLDER/html/index.html. ROOT is the repository, this one if it is not
# given. The exit status is not 0 where a name is not documented, or doxygen has anything else to say.
set -euo pipefail

root=$(cd "${2:-$(dirname "${BASH_SOURCE[0]}")/../..}" && pwd)
mkdir -p "$1"
output=$(cd "$1" && pwd)
version=$(sed -En 's/^project\(OrvModel VERSION ([0-9.]+).*/\1/p' "$root/CMakeLists.txt")

cd "$root"
{
  cat docs/reference/Doxyfile
  printf 'OUTPUT_DIRECTORY = "%s"\nPROJECT_NUMBER = "%s"\n' "$output" "$version"
} | doxygen -
