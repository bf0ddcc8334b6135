/// \file
/// Compares what was loaded with what should have been.
#pragma once

#include "reference/UploadedModel.h"

namespace OrvReference {

/// One line per difference, none when the models agree. Floats are compared by their bits, but a
/// NaN of the expected model's generated normals agrees with every NaN. Of long arrays only the
/// first elements that differ are named.
std::vector<std::string> differences(const UploadedModel &expected, const UploadedModel &actual);

} // namespace OrvReference
