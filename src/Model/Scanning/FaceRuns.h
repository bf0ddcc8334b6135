/// \file
/// Runs of lines of corners, "f", in the way they are mostly written.
#pragma once

#include "Numbers/DigitMarks.h"
#include "Scanning/OBJGeometry.h"

namespace Halvard::Orv {

/// Reads successive lines of the kind "f corner corner corner ..." into `geometry`.
///
/// \param line start of a line; the text up to `end` ends with a line feed.
/// \param marks of that text.
/// \return start of the first unread line; equals `line` if that line is not written
///         plainly; `end` after all lines. May stop early: call again.
const char *readFaceRun(const char *line, const char *end, const DigitMarks &marks,
                        OBJGeometry &geometry);

} // namespace Halvard::Orv
