#include "Material.h"

#include <OrvCore/InstanceData.h>

#include <QtCore/QByteArray>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>

namespace Halvard::Orv::Render {

namespace {

constexpr float SharpestShininess = 1000;

template <size_t Count>
std::optional<std::array<float, Count>> readFloats(const InstanceData &record, const char *member)
{
    const QByteArray bytes = record.value(QLatin1String(member));
    std::array<float, Count> values;
    if (bytes.size() != int(sizeof(values)))
        return {};
    std::memcpy(values.data(), bytes.constData(), sizeof(values));
    if (!std::all_of(values.begin(), values.end(),
                     [](float value) { return std::isfinite(value); }))
        return {};
    return values;
}

std::optional<QVector3D> readColour(const InstanceData &record, const char *member)
{
    const auto values = readFloats<3>(record, member);
    if (!values)
        return {};
    const auto part = [&values](size_t i) { return std::clamp((*values)[i], 0.0f, 1.0f); };
    return QVector3D(part(0), part(1), part(2));
}

float readNumber(const InstanceData &record, const char *member, float preset, float low,
                 float high)
{
    const auto values = readFloats<1>(record, member);
    return values ? std::clamp((*values)[0], low, high) : preset;
}

TextureReference readTexture(const InstanceData &record, const char *member)
{
    return {record.texturePath(QLatin1String(member)), record.texture(QLatin1String(member))};
}

} // namespace

Material materialFromRecord(const InstanceData &record)
{
    Material material;
    material.diffuseMap = readTexture(record, "map_Kd");
    material.specularMap = readTexture(record, "map_Ks");
    const bool isTextured = material.diffuseMap.texture || !material.diffuseMap.path.isEmpty();
    material.diffuse =
        readColour(record, "Kd").value_or(isTextured ? QVector3D(1, 1, 1) : material.diffuse);
    material.specular = readColour(record, "Ks").value_or(material.specular);
    // Below 1 a highlight would cover the whole model.
    material.shininess = readNumber(record, "Ns", material.shininess, 1, SharpestShininess);
    material.opacity = readNumber(record, "d", material.opacity, 0, 1);
    return material;
}

} // namespace Halvard::Orv::Render
