/// \file
/// Faces, one at a time.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <OrvModel/OBJReader.h>

namespace Halvard::Orv {

/// Reads the corners of one "f" line.
/// \param text what follows the keyword.
/// \return where the next line begins; null, with nothing appended, when the line
///         is no plain text or has a token that is no plain corner.
const char *readFaceLine(const char *text, const char *end, OBJGeometry &geometry);

/// Appends the face that `line` has parsed.
/// \param line a reader that has counted no values before this line.
void appendFace(const OBJReader &line, OBJGeometry &geometry);

} // namespace Halvard::Orv
