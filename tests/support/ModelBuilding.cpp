#include "support/ModelBuilding.h"

namespace OrvTest {

using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using Halvard::Orv::ModelDataArray;
using Halvard::Orv::ModelDataStream;

QString vertexName()
{
    return QStringLiteral("va_Vertex");
}

QString normalName()
{
    return QStringLiteral("va_Normal");
}

QString texCoordName()
{
    return QStringLiteral("va_TexCoord");
}

QSharedPointer<ModelDataStream> floatStream(const std::vector<float> &values)
{
    const auto stream = QSharedPointer<ModelDataArray>::create(typeFloat, 0ul);
    stream->append(values.size(), values.data());
    return stream;
}

QSharedPointer<ModelDataStream> uintStream(const std::vector<unsigned> &values)
{
    const auto stream = QSharedPointer<ModelDataArray>::create(typeUnsignedInt, 0ul);
    stream->append(values.size(), values.data());
    return stream;
}

void addAttribute(ModelBuilder &builder, const QString &name, int components,
                  const std::vector<float> &values, const std::vector<unsigned> &indices)
{
    builder.createVertexAttribute(name, components, typeFloat, 0, 0);
    builder.addValuesToVertexAttribute(name, values.size(), values.data(), typeFloat);
    builder.addIndicesToVertexAttribute(name, indices.size(), indices.data());
}

void addFaces(ModelBuilder &builder, const std::vector<unsigned> &cornerCounts)
{
    builder.addVertexCountsToFaces(cornerCounts.size(), cornerCounts.data());
}

void addGroup(ModelBuilder &builder, const QString &name, const std::vector<unsigned> &faces,
              quint64 flags)
{
    builder.createMaterialGroup(name, InstanceData(QStringLiteral("OBJMaterial")), -1, flags);
    builder.addFacesToMaterialGroup(name, faces.size(), faces.data(), QString());
}

} // namespace OrvTest
