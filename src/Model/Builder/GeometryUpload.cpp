#include "Builder/GeometryUpload.h"

#include "Preparing/GeometryPreparing.h"

#include <OrvModel/ModelBuilder.h>

#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>

namespace Halvard::Orv {

void GeometryUpload::upload(OBJGeometry &&geometry, ModelBuilder &builder, GPUModel &model,
                            const InstanceData &record)
{
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context)
        return;
    PreparedGeometry prepared =
        prepareGeometry(std::move(geometry), builder._materialGroups.keys(), &builder);
    if (prepared.isEmpty())
        return;

    for (const PreparedGeometry::Attribute &attribute : qAsConst(prepared.attributes)) {
        ModelBuilder::VertexAttribute &target = builder._vertexAttributes[attribute.name];
        target.gpuValues = attribute.values;
        target.gpuIndices = prepared.indices;
        target.components = attribute.components;
    }
    builder._gpuIndices = prepared.indices;
    for (const PreparedGeometry::Command &run : qAsConst(prepared.commands))
        builder.addDrawCommand(run.group, builder.materialGroupFlags(run.group), run.firstIndex,
                               run.count);
    prepared = {};
    builder.addToModel(*context, &model, record, QStringLiteral("va_Vertex"), QString(),
                       GL_STATIC_DRAW, GL_TRIANGLES);
}

} // namespace Halvard::Orv
