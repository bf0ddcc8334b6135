/// \file
/// Lines of numbers: "v", "vn" and "vt".
#pragma once

#include "Scanning/DigitMarks.h"
#include "Scanning/OBJGeometry.h"

namespace Halvard::Orv {

/// \name Runs of lines
/// Read successive lines of the kind "v number number number", "vn ..." and "vt
/// number number" into an attribute.
///
/// \param line where a line begins; the text up to `end` ends with a line feed.
/// \param marks of that text.
/// \return where the first line begins that is not read: for being of another kind or
///         not written plainly, or because it is kilobytes away from `line`. `line` itself
///         is returned only for the line's own sake, `end` after all lines.
/// @{
const char *readPositionLines(const char *line, const char *end, const DigitMarks &marks,
                              OBJAttribute &positions);
const char *readNormalLines(const char *line, const char *end, const DigitMarks &marks,
                            OBJAttribute &normals);
const char *readTexCoordLines(const char *line, const char *end, const DigitMarks &marks,
                              OBJAttribute &texCoords);
/// @}

/// Reads the numbers of one line, 0 for those that are missing or malformed.
/// \param text what follows the keyword.
/// \return where the next line begins; null, with nothing appended, when the line
///         is no plain text.
const char *readValueLine(const char *text, const char *end, OBJAttribute &attribute);

/// Appends a value of attribute.components floats.
void appendValue(OBJAttribute &attribute, const float *value);

} // namespace Halvard::Orv
