#!/usr/bin/env bash
# Compiles every exported header with strict warnings as errors: alone, as the only one of a source
# file, or, which takes less time, all together. And the OpenGL types beside other headers of OpenGL.
#
#     check_headers.sh alone|together ROOT WORK_DIR COMPILER STANDARD [FLAG...]
#
# ROOT is the repository, the flags say where Qt and libepoxy are.
set -euo pipefail
# shellcheck source=tests/install/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
mode=$1 root=$2 work_dir=$3 compiler=$4 standard=$5
shift 5

# Qt's own headers are not ours to mend. What makes a header warn for its users is not the same as
# what makes a source warn.
flags=("-std=$standard" -fPIC -fsyntax-only -Werror -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion
  -Wshadow -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wunused -Wcast-qual
  -I"$root/include" -I"$root/platform/OrvCore/include" -I"$root/platform/OrvGL/include" "$@")

# compile NAME: the source text on stdin.
compile() {
  local source=$work_dir/$1.cpp
  cat >"$source"
  "$compiler" "${flags[@]}" "$source" || fail "$1 does not compile, see above"
}

rm -rf "$work_dir"
mkdir -p "$work_dir"
mapfile -t headers < <(cd "$root" && find include platform/*/include -name '*.h' | sed 's,.*include/,,' | sort)
((${#headers[@]} >= 30)) || fail "only ${#headers[@]} headers were found"
if [[ $mode == together ]]; then
  # libepoxy comes before Qt's headers or not at all.
  { echo '#include <OrvGL/OpenGLFunctions.h>'; printf '#include <%s>\n' "${headers[@]}"; } | compile together
else
  for header in "${headers[@]}"; do
    printf '#include <%s>\n#include <%s>\n' "$header" "$header" | compile "${header//\//_}"
  done
fi

compile types_before_epoxy <<<'#include <OrvModel/ModelBuilder.h>
#include <OrvGL/OpenGLFunctions.h>'
compile types_after_epoxy <<<'#include <OrvGL/OpenGLFunctions.h>
#include <OrvModel/ModelBuilder.h>'
compile types_before_qt <<<'#include <OrvModel/ModelBuilder.h>
#include <QtGui/QOpenGLFunctions>
static_assert(GL_TRIANGLES == 4, "");'
compile types_after_qt <<<'#include <QtGui/QOpenGLFunctions>
#include <OrvModel/ModelBuilder.h>
static_assert(GL_FLOAT == 0x1406, "");'

# What the examples in the headers take for granted.
compile model_loading <<<'#include <OrvModel/ModelLoading.h>
int bundles(const QString &file, QString &error)
{
    const std::unique_ptr<Halvard::Orv::GPUModel> model(
        Halvard::Orv::loadModelFromOBJFile(file, error));
    return model ? model->bundleCount() : 0;
}'
compile model_uploading <<<'#include <OrvModel/ModelUploading.h>
bool upload(const Halvard::Orv::PreparedModel &prepared)
{
    Halvard::Orv::GPUModel model;
    return !prepared.isEmpty() && Halvard::Orv::uploadPreparedModel(prepared, model);
}'
compile obj_reader <<<'#include <OrvModel/OBJReader.h>
int firstLine(QString text)
{
    QTextStream stream(&text);
    return Halvard::Orv::OBJReader(stream).getLineType();
}'
