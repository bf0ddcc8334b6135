#!/usr/bin/env bash
# Every exported name is in the reference, in a module, and doxygen has nothing to warn of.
#
#     reference_test.sh ROOT WORK_FOLDER
#
# Then it sees that a name without documentation would be noticed.
set -euo pipefail

root=$1
work=$2
rm -rf "$work"
mkdir -p "$work/broken"

fail() {
  printf '%s\n' "$@" >&2
  exit 1
}

bash "$root/docs/reference/make.sh" "$work/output" || fail "doxygen warned"

# The modules in the order of the pipeline, and in none of them nothing.
order=$(grep -o 'href="group__[a-z]*\.html"' "$work/output/html/modules.html" | tr '\n' ' ')
expected=
for module in read prepare build geometry upload draw records check versions; do
  expected+="href=\"group__$module.html\" "
  grep -q 'class="memItemRight"' "$work/output/html/group__$module.html" ||
    fail "the module $module is empty"
done
[[ $order == "$expected" ]] || fail "modules: $order" "expected: $expected"

# A header with a name of its own says to which module it belongs. The others hold a macro, or the
# functions of OpenGL.
while IFS= read -r header; do
  case $header in
    *Export.h | */OpenGLFunctions.h) continue ;;
  esac
  grep -q '^/// \\addtogroup [a-z]*$' "$header" || fail "$header is in no module"
done < <(find "$root/include" "$root"/platform/*/include -name '*.h')

# The same with one name more that nothing is said about.
cp -r "$root/include" "$root/platform" "$root/CMakeLists.txt" "$work/broken"
mkdir -p "$work/broken/docs"
cp -r "$root/docs/reference" "$work/broken/docs"
header=$work/broken/include/OrvModel/VertexKey.h
sed -i 's|^/// @}$|ORVMODEL_EXPORT int undocumentedName();\n&|' "$header"
if bash "$root/docs/reference/make.sh" "$work/broken-output" "$work/broken" 2>"$work/warnings"; then
  fail "a name without documentation is not noticed"
fi
grep -q 'undocumentedName.* is not documented' "$work/warnings" ||
  fail "not noticed for the name:" "$(cat "$work/warnings")"
echo "all as expected"
