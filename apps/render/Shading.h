/// \file
/// What the surface of a model shows.
#pragma once

#include <QtCore/QString>

#include <optional>
#include <vector>

namespace Halvard::Orv {
struct PreparationReport;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

/// What the surface of a model shows. The shaders know the numbers.
enum class Shading
{
    /// The materials, lit by the stored normals.
    Material = 0,
    /// The materials, each face lit by itself.
    Flat = 1,
    /// The stored normals as colours, (x, y, z) from -1..1 to 0..1, without light. A normal
    /// that points away from the viewer is turned round, since files and generated normals
    /// differ in their side.
    Normals = 2,
    /// A checker of eight fields a unit, redder along u and greener along v.
    TextureCoordinates = 3,
    /// A colour for each draw command.
    Groups = 4,
    /// Faces whose corners run clockwise, in red.
    BackFaces = 5
};

/// All of them, in the order of their numbers.
std::vector<Shading> allShadings();

/// The word for it on command lines: "material", "flat", "normals", "uv", "groups", "backfaces".
QString shadingName(Shading shading);

/// Nothing for any other word.
std::optional<Shading> shadingNamed(const QString &name);

/// What suits a model best: its materials, lit face by face where there are few faces without
/// normals. Generated normals are smooth, also over the edges of a cube; they suit a mesh that is
/// fine enough to mean something smooth.
Shading shadingFor(const PreparationReport &report);

} // namespace Halvard::Orv::Render
