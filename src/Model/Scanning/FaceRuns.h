/// \file
/// Lines of corners, "f", in the way they are mostly written.
#pragma once

#include "Scanning/DigitMarks.h"
#include "Scanning/OBJGeometry.h"

namespace Halvard::Orv {

/// Reads successive lines of the kind "f corner corner corner ..." into `geometry`.
///
/// \param line where a line begins; the text up to `end` ends with a line feed.
/// \param marks of that text.
/// \return where the first line begins that is not read: for being of another kind or
///         not written plainly, or because it is kilobytes away from `line`. `line` itself
///         is returned only for the line's own sake, `end` after all lines.
const char *readFaceLines(const char *line, const char *end, const DigitMarks &marks,
                          OBJGeometry &geometry);

} // namespace Halvard::Orv
