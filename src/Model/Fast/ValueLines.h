/// \file
/// Lines of numbers: "v", "vn" and "vt".
#pragma once

#include "DigitMarks.h"
#include "OBJGeometry.h"

namespace Halvard::Orv {

/// Reads successive lines of the kind "`keyword` number number ..." into
/// `attribute`, one value of attribute.components floats each.
///
/// \param line where a line begins; the text up to `end` ends with a line feed.
/// \param marks of that text.
/// \param keyword "v", "vn" or "vt".
/// \return where the first line begins that is of another kind or is not written
///         plainly: `line` itself when that is the first, `end` after all lines.
const char *readValueLines(const char *line, const char *end, const DigitMarks &marks,
                           const char *keyword, OBJAttribute &attribute);

/// Reads the numbers of one line, 0 for those that are missing or malformed.
/// \param text what follows the keyword.
/// \return where the next line begins; null, with nothing appended, when the line
///         is no plain text.
const char *readValueLine(const char *text, const char *end, OBJAttribute &attribute);

/// Appends a value of attribute.components floats.
void appendValue(OBJAttribute &attribute, const float *value);

} // namespace Halvard::Orv
