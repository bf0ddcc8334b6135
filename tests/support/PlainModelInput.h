/// \file
/// Hands a plain model to either path of the library. Knows the library's internals.
#pragma once

#include "support/PlainModel.h"

#include "Scanning/OBJGeometry.h"
#include <OrvModel/ModelBuilder.h>

namespace OrvTest {

/// The model as the scanner hands it over: groups without faces are not there.
Halvard::Orv::OBJGeometry toGeometry(const PlainModel &model);

/// Reads the model into a builder, as a loader does line by line. All groups are made, with or
/// without faces. An attribute without values is none.
void readInto(Halvard::Orv::ModelBuilder &builder, const PlainModel &model);

} // namespace OrvTest
