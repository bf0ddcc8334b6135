/// \file
/// A second, slow way of loading a model, to judge the library by.
///
/// How the pieces of this directory go together:
///
///     ModelGenerator   seed -> OBJ and MTL files, sound or slightly broken
///     Reference        files -> what has to be on the GPU   (this header)
///     LoadedModel      files -> what the library put there, read back
///     Differences      both -> what differs, in words
///     Shrinking        files that show a difference -> the fewest lines that still do
///     RandomModelsTest runs all of that for many seeds
///     ReferenceTest    the judge itself, against models worked out by hand
///
/// The judge consists of OBJPouring and MTLPouring (text to values, indices and groups), Welding,
/// EarClipping and SmoothNormals. Rules for changing it:
///
/// * It shares no code with src/Model and calls nothing of the library: a mistake would judge
///   itself.
/// * It is written as the rules read, step by step in their order, in plain containers, and is
/// never
///   made faster. What looks clumsy is a rule: an algorithm that scans everything again scans here
///   too.
/// * Qt is used where Qt defines the result: splitting lines, reading numbers, resolving paths,
///   vector arithmetic, the iteration order of a QHash.
/// * Results are compared to the bit. The one exception are NaNs that arithmetic made (generated
///   normals): which of two NaN operands survives an addition is the compiler's choice.
///
/// Material groups go in the order of a hash seeded per process; programs that print failures to be
/// looked at again fix the seed with qSetGlobalQHashSeed(0).
#pragma once

#include "reference/UploadedModel.h"

#include <QtCore/QString>

namespace OrvReference {

/// What loading `fileName` has to give, the messages logged included. Needs no OpenGL context.
///
/// Installs a message handler while it works. Texts of the judge's own Qt calls (a path with a NUL,
/// say) count as messages, since the library makes the same calls.
UploadedModel judge(const QString &fileName);

} // namespace OrvReference
