/// \file
/// Plain lines of values and faces, one at a time.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <OrvModel/OBJReader.h>

namespace Halvard::Orv {

/// Reads the numbers of one "v", "vn" or "vt" line, 0 for those that are missing or
/// malformed.
/// \param text what follows the keyword.
/// \return start of the next line; null, with nothing appended, when the line is no
///         plain text.
const char *readPlainValue(const char *text, const char *end, OBJAttribute &attribute);

/// Reads the corners of one "f" line.
/// \param text what follows the keyword.
/// \return start of the next line; null, with nothing appended, when the line is no
///         plain text or has a token that is no plain corner.
const char *readPlainFace(const char *text, const char *end, OBJGeometry &geometry);

/// \name Lines that are not plain
/// Append what a line reader found.
/// @{

/// \param value attribute.components floats.
void appendValue(OBJAttribute &attribute, const float *value);

/// \param line a reader that has counted no values before this line.
void appendFace(const OBJReader &line, OBJGeometry &geometry);

/// @}

} // namespace Halvard::Orv
