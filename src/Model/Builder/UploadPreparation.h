/// \file
/// What upload() does before it talks to OpenGL.
#pragma once

#include "Builder/ModelUpload.h"

class QString;

namespace Halvard::Orv {

class ModelBuilder;
struct ModelBuilderState;

/// Whether the builder is valid, and has the attribute `positionAttribute`.
bool canBeUploaded(const ModelBuilder &builder, const QString &positionAttribute);

/// Builds streams, draw commands and normals where they are not built yet. Needs no
/// OpenGL.
///
/// \param builder one that can be uploaded.
/// \return false when something of it cannot be had, or the attribute's GPU values are
///         not three or more floats a vertex. Where something was still to be built, the
///         builder then holds no commands. So it is when this throws.
bool prepareForUpload(ModelBuilder &builder, const QString &positionAttribute);

/// What a prepared builder uploads: everything but the record of the instances, how they are told
/// apart, and OpenGL's enumerants.
UploadInput uploadInput(const ModelBuilderState &state, const QString &positionAttribute);

} // namespace Halvard::Orv
