/// \file
/// Where a model's geometry lies, read back from the GPU.
#pragma once

#include "Bounds.h"

#include <vector>

namespace Halvard::Orv {
class DrawBuffers;
class GPUModel;
class PreparedModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

/// The extent of what a model draws. Vertices that no command uses do not count,
/// nor do those that are not finite.
struct ModelGeometry
{
    /// Of everything drawn.
    Bounds bounds;
    /// `commandBounds[bundle][command]`; empty boxes for commands that draw nothing.
    std::vector<std::vector<Bounds>> commandBounds;
    /// The vertices drawn, each once, in buffer order.
    std::vector<QVector3D> points;
};

/// Reads back the element buffers and the attribute "va_Vertex" of all bundles.
/// A bundle without that attribute, or with one that is not three floats, counts
/// as drawing nothing. Needs the model's OpenGL context current.
ModelGeometry readGeometry(const GPUModel &model);

/// The same before the upload, on any thread: what readGeometry() finds once the model of a file
/// is uploaded, all in one bundle.
ModelGeometry geometryOf(const PreparedModel &model);

/// The element buffer of a bundle as 32-bit numbers; empty when there is none, or
/// when its type is none of the three that OpenGL draws with.
std::vector<quint32> readIndices(const DrawBuffers &bundle);

} // namespace Halvard::Orv::Render
