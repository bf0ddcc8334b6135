/// \file
/// Runs of lines of numbers: "v", "vn" and "vt", in the way they are mostly written.
#pragma once

#include "Numbers/DigitMarks.h"
#include "Scanning/OBJGeometry.h"

namespace Halvard::Orv {

/// \name Runs of one kind of lines
/// Read successive lines of the kind "v number number number", "vn ..." and "vt
/// number number" into an attribute.
///
/// \param line start of a line; the text up to `end` ends with a line feed.
/// \param marks of that text.
/// \return start of the first unread line; equals `line` if that line is not written
///         plainly; `end` after all lines. May stop early: call again.
/// @{
const char *readPositionRun(const char *line, const char *end, const DigitMarks &marks,
                            OBJAttribute &positions);
const char *readNormalRun(const char *line, const char *end, const DigitMarks &marks,
                          OBJAttribute &normals);
const char *readTexCoordRun(const char *line, const char *end, const DigitMarks &marks,
                            OBJAttribute &texCoords);
/// @}

} // namespace Halvard::Orv
