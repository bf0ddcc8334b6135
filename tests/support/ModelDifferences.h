/// \file
/// How two models differ.
#pragma once

#include "support/PlainModel.h"
#include "support/UploadedModel.h"

#include <string>
#include <vector>

namespace OrvTest {

/// One line per difference, none when the models agree:
///
///     attribute "va_Vertex", vertex 2, component 1: expected 0x1p+0 (1), got -0x0p+0 (-0)
///
/// Floats are compared by their bits. Of long arrays only the first elements that differ are
/// named.
std::vector<std::string> differences(const PlainModel &expected, const PlainModel &actual);

/// The same of models that have been uploaded. A NaN of the expected model's generated normals
/// agrees with every NaN.
std::vector<std::string> differences(const UploadedModel &expected, const UploadedModel &actual);

} // namespace OrvTest
