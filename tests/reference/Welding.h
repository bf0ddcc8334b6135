/// \file
/// From one index per attribute and corner to one index per corner.
#pragma once

#include "support/PlainModel.h"

namespace OrvReference {

struct WeldedModel
{
    int cornerCount = 0;
    int vertexCount = 0;
    std::vector<quint32> indices;                 ///< One GPU vertex per corner.
    std::map<QString, std::vector<float>> values; ///< Per attribute, one value per GPU vertex.
};

/// Gives every corner the values that its indices select, zeros where they select nothing, and
/// numbers the corners so that those with the same bytes share the number of the first of them.
WeldedModel weld(const OrvTest::PlainModel &model);

} // namespace OrvReference
