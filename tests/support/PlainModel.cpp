#include "support/PlainModel.h"

#include <numeric>

namespace OrvTest {

namespace {

PlainAttribute &made(PlainModel &model, const QString &name, int components)
{
    PlainAttribute &attribute = model.attributes[name];
    attribute.components = components;
    return attribute;
}

const PlainAttribute &found(const PlainModel &model, const QString &name)
{
    static const PlainAttribute none;
    const auto attribute = model.attributes.find(name);
    return attribute == model.attributes.end() ? none : attribute->second;
}

} // namespace

quint32 PlainModel::cornerCount() const
{
    return std::accumulate(cornerCounts.begin(), cornerCounts.end(), quint32(0));
}

PlainGroup *PlainModel::group(const QString &name)
{
    for (PlainGroup &candidate : groups) {
        if (candidate.name == name)
            return &candidate;
    }
    return nullptr;
}

PlainAttribute &PlainModel::positions()
{
    return made(*this, QStringLiteral("va_Vertex"), 3);
}

PlainAttribute &PlainModel::normals()
{
    return made(*this, QStringLiteral("va_Normal"), 3);
}

PlainAttribute &PlainModel::texCoords()
{
    return made(*this, QStringLiteral("va_TexCoord"), 2);
}

const PlainAttribute &PlainModel::positions() const
{
    return found(*this, QStringLiteral("va_Vertex"));
}

const PlainAttribute &PlainModel::normals() const
{
    return found(*this, QStringLiteral("va_Normal"));
}

const PlainAttribute &PlainModel::texCoords() const
{
    return found(*this, QStringLiteral("va_TexCoord"));
}

} // namespace OrvTest
