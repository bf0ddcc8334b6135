/// \file
/// Models as an OBJ file gives them, for both roads to the GPU.
#pragma once

#include "Scanning/OBJGeometry.h"

#include "support/RandomRings.h"

#include <OrvModel/ModelBuilder.h>

#include <QtCore/QString>

#include <vector>

namespace OrvTest {

/// Values and indices of one attribute. Without values there is no attribute.
struct PlainAttribute
{
    std::vector<float> values;
    std::vector<unsigned> indices;
};

struct PlainModel
{
    PlainAttribute positions;
    PlainAttribute normals;
    PlainAttribute texCoords;
    std::vector<unsigned> cornerCounts;
    /// Number of each face's group; -1 for none.
    std::vector<int> groupOfFace;
    std::vector<QString> groups;

    unsigned cornerCount() const;
};

/// The model as the scanner hands it over.
Halvard::Orv::OBJGeometry toGeometry(const PlainModel &model);

/// The model as a loader adds it line by line. All groups are made, with or
/// without faces.
void pour(const PlainModel &model, Halvard::Orv::ModelBuilder &builder);

/// A model of some tens of faces with everything that is wrong in files: wild and
/// absent indices, index streams that are too short, values that come twice, faces
/// of any number of corners, faces without a group, numbers that are none.
PlainModel randomModel(Dice &dice);

} // namespace OrvTest
