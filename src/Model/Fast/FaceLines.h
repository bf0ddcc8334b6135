/// \file
/// Lines of corners, "f", in the way they are mostly written.
#pragma once

#include "DigitMarks.h"
#include "OBJGeometry.h"

namespace Halvard::Orv {

/// Reads successive lines of the kind "f corner corner corner ..." into `geometry`.
///
/// \param line where a line begins; the text up to `end` ends with a line feed.
/// \param marks of that text.
/// \return where the first line begins that is of another kind or is not written
///         plainly: `line` itself when that is the first, `end` after all lines.
const char *readFaceLines(const char *line, const char *end, const DigitMarks &marks,
                          OBJGeometry &geometry);

} // namespace Halvard::Orv
