/// \file
/// Loads models and reads them back from the GPU. An OpenGL context has to be current.
#pragma once

#include "support/UploadedModel.h"

#include <functional>

namespace Halvard::Orv {
class GPUModel;
}

namespace OrvTest {

/// The bundles of a model.
std::vector<Bundle> readBack(const Halvard::Orv::GPUModel &model);

/// What a loader gives, messages included. The model is the caller's.
/// \param load gets the error message to set, and may return null.
UploadedModel readBackFrom(const std::function<Halvard::Orv::GPUModel *(QString &error)> &load);

/// Loads `fileName` with the library, and deletes the model again.
UploadedModel loadWithLibrary(const QString &fileName);

} // namespace OrvTest
