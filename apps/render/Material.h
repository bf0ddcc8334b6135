/// \file
/// What the renderer takes from a material record.
#pragma once

#include <QtCore/QString>
#include <QtGui/QVector3D>

namespace Halvard::Orv {
class InstanceData;
class Texture;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

/// A texture member of a record: a path, or a texture, or neither.
struct TextureReference
{
    QString path;
    Texture *texture = nullptr;
};

/// A material in the terms of the shaders. All values are finite and in range,
/// whatever the file said.
struct Material
{
    QVector3D diffuse = {0.8f, 0.8f, 0.8f};
    QVector3D specular;
    float shininess = 32;
    float opacity = 1;
    TextureReference diffuseMap;
    TextureReference specularMap;

    bool isOpaque() const { return opacity >= 1; }
};

/// Reads the members Kd, Ks, Ns, d, map_Kd and map_Ks by name, which works whether
/// or not the record's plan is registered. What is missing, of the wrong size or
/// not finite keeps its default; only the diffuse colour of a textured material is
/// then white, so that the texture shows as it is.
Material materialFromRecord(const InstanceData &record);

} // namespace Halvard::Orv::Render
