/// \file
/// Random models, wrong in every way that files are.
#pragma once

#include "support/PlainModel.h"
#include "support/RandomRings.h"

namespace OrvTest {

/// A model of some tens of faces with everything that is wrong in files: wild and
/// absent indices, index streams that are too short, values that come twice, faces
/// of any number of corners, faces without a group, numbers that are none.
PlainModel randomModel(Dice &dice);

} // namespace OrvTest
