/// \file
/// A prepared model as plain values, to be compared with an uploaded one.
#pragma once

#include "support/UploadedModel.h"

namespace Halvard::Orv {
class PreparedModel;
}

namespace OrvTest {

/// The arrays, commands and materials of the model, in the place of what an upload makes of them:
/// what is the same for every upload is filled in.
UploadedModel contentsOf(const Halvard::Orv::PreparedModel &model);

} // namespace OrvTest
