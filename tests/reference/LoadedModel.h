/// \file
/// What the library makes of a model file.
#pragma once

#include "reference/UploadedModel.h"

namespace OrvReference {

/// Loads `fileName` with the library and reads everything back from the GPU. An OpenGL context has
/// to be current; the model is deleted again.
UploadedModel loadWithLibrary(const QString &fileName);

} // namespace OrvReference
