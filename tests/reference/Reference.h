/// \file
/// The reference implementation: a second, slow way of loading a model, which the library is
/// compared with.
///
/// How the pieces of this directory go together:
///
///     ModelGenerator    seed -> OBJ and MTL files, sound or slightly broken
///     Reference         files -> what has to be on the GPU   (this header)
///     Shrinking         files that show a difference -> the fewest lines that still do
///     RandomModelsTest  runs all of that for many seeds
///     ReferenceTest     the reference implementation itself, against models worked out by hand
///
/// tests/support has what the library put on the GPU, read back (ModelReadBack.h), and how two
/// models differ, in words (ModelDifferences.h).
///
/// The reference implementation consists of OBJFileReading and MTLFileReading (text to values,
/// indices and groups), Welding, FaceTriangles, and PlainGeometry.h of tests/support. Rules for
/// changing it:
///
/// * It shares no code with src/Model and calls nothing of the library: a mistake would confirm
///   itself.
/// * It is written as the rules read, step by step in their order, in plain containers, and is
///   never made faster. What looks clumsy is a rule: an algorithm that scans everything again
///   scans here too.
/// * Qt is used where Qt defines the result: splitting lines, reading numbers, resolving paths,
///   vector arithmetic.
/// * Results are compared to the bit. The one exception are NaNs that arithmetic made (generated
///   normals): which of two NaN operands survives an addition is the compiler's choice.
#pragma once

#include "support/UploadedModel.h"

#include <QtCore/QString>

namespace OrvReference {

using OrvTest::UploadedModel;

/// What loading `fileName` has to give, the messages logged included. Needs no OpenGL context.
///
/// Installs a message handler while it works. Texts of its own Qt calls (a path with a NUL, say)
/// count as messages, since the library makes the same calls.
UploadedModel loadByReference(const QString &fileName);

} // namespace OrvReference
