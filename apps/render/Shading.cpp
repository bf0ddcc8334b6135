#include "Shading.h"

#include <OrvModel/PreparationReport.h>

#include <utility>

namespace Halvard::Orv::Render {

namespace {

constexpr std::pair<const char *, Shading> Names[] = {
    {"material", Shading::Material}, {"flat", Shading::Flat},
    {"normals", Shading::Normals},   {"uv", Shading::TextureCoordinates},
    {"groups", Shading::Groups},     {"backfaces", Shading::BackFaces}};

} // namespace

std::vector<Shading> allShadings()
{
    std::vector<Shading> shadings;
    for (const auto &[name, shading] : Names)
        shadings.push_back(shading);
    return shadings;
}

QString shadingName(Shading shading)
{
    for (const auto &[name, other] : Names) {
        if (other == shading)
            return QLatin1String(name);
    }
    return {};
}

std::optional<Shading> shadingNamed(const QString &name)
{
    for (const auto &[other, shading] : Names) {
        if (name == QLatin1String(other))
            return shading;
    }
    return {};
}

Shading shadingFor(const PreparationReport &report)
{
    constexpr quint64 FewFaces = 100;
    return report.normals == 0 && report.faces <= FewFaces ? Shading::Flat : Shading::Material;
}

} // namespace Halvard::Orv::Render
