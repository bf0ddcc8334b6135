/// \file
/// The way of a scanned file through a builder into a model.
#pragma once

#include "Scanning/OBJGeometry.h"

namespace Halvard::Orv {

class GPUModel;
class InstanceData;
class ModelBuilder;

/// A friend of ModelBuilder: puts streams that were prepared outside of it in the
/// place of those that it would have built from the same lines.
struct GeometryUpload
{
    /// Adds the geometry, with the materials that the builder holds, to `model`:
    /// what ModelBuilder::upload() would add with "va_Vertex" as its positions, a
    /// null material-id member, GL_STATIC_DRAW and GL_TRIANGLES. Nothing is added
    /// where that would add nothing.
    ///
    /// \param geometry is used up.
    static void upload(OBJGeometry &&geometry, ModelBuilder &builder, GPUModel &model,
                       const InstanceData &record);
};

} // namespace Halvard::Orv
