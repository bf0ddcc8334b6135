#include "PreparedModelData.h"

#include "Builder/ModelBuilderState.h"
#include "Builder/UploadPreparation.h"
#include "Preparing/GeometryPreparing.h"

#include <OrvGL/OpenGLFunctions.h>

#include <cmath>

namespace Halvard::Orv {

namespace {

/// The record of the whole model: it stands where the file puts it.
InstanceData makeModelRecord()
{
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    InstanceData record(QStringLiteral("InstanceInfo"));
    record.set(QStringLiteral("ModelMatrix"), identity, sizeof identity);
    record.set(QStringLiteral("PreviousModelMatrix"), identity, sizeof identity);
    record.set(QStringLiteral("ModelNormalMatrix"), identity, sizeof identity);
    return record;
}

/// What is the same for all models that are uploaded without being told how.
void addDefaults(UploadInput &input, const ModelBuilderState &builder)
{
    input.instanceData = makeModelRecord();
    input.usage = GL_STATIC_DRAW;
    input.primitiveType = GL_TRIANGLES;
    input.allocator = builder.allocator;
}

bool isFinite(const float *xyz)
{
    return std::isfinite(xyz[0]) && std::isfinite(xyz[1]) && std::isfinite(xyz[2]);
}

PreparedModelData::Box boxOf(const UploadInput &input)
{
    PreparedModelData::Box box; // zeros
    if (input.attributes.isEmpty())
        return box;
    const UploadInput::Attribute &positions = input.attributes.at(input.positions);
    const auto *values = static_cast<const float *>(positions.values.data());
    const auto *indices = static_cast<const quint32 *>(input.indices.data());
    const unsigned long count = input.indices.count();
    bool isEmpty = true;
    for (unsigned long i = 0; i < count; ++i) {
        const float *xyz =
            values + static_cast<size_t>(indices[i]) * static_cast<size_t>(positions.components);
        if (!isFinite(xyz))
            continue;
        for (int axis = 0; axis < 3; ++axis) {
            if (isEmpty || xyz[axis] < box.minimum[axis])
                box.minimum[axis] = xyz[axis];
            if (isEmpty || xyz[axis] > box.maximum[axis])
                box.maximum[axis] = xyz[axis];
        }
        isEmpty = false;
    }
    return box;
}

UploadElements copied(const UploadElements &elements)
{
    const auto copy = QSharedPointer<ModelDataArray>::create(elements.type(), elements.count());
    copy->setData(0, elements.count(), elements.data());
    return UploadElements(copy);
}

} // namespace

const PreparedModelData::Box &PreparedModelData::box() const
{
    std::call_once(_boxFlag, [this] { _box = boxOf(input); });
    return _box;
}

std::unique_ptr<PreparedModelData> takeGeometry(PreparedGeometry &&geometry,
                                                const ModelBuilder &builder)
{
    auto data = std::make_unique<PreparedModelData>();
    if (geometry.isEmpty())
        return data;
    UploadInput &input = data->input;
    for (const PreparedGeometry::Attribute &attribute : geometry.attributes)
        input.attributes.append(
            {attribute.name, attribute.components, UploadElements(attribute.values)});
    input.positions = 0;
    input.indices = UploadElements(geometry.indices);
    UploadInput::Batch batch{0, {}};
    for (const PreparedGeometry::Command &command : geometry.commands) {
        const ModelBuilder::MaterialGroup group =
            builder.state().materialGroups.value(command.group);
        batch.commands.append({drawCommand(command.firstIndex, command.count), command.group,
                               group.instanceData, group.id, group.objectName});
    }
    if (!batch.commands.isEmpty())
        input.batches.append(batch);
    addDefaults(input, builder.state());
    geometry = {};
    return data;
}

std::unique_ptr<PreparedModelData> shareStreams(const ModelBuilder &builder,
                                                const QString &positionAttribute)
{
    auto data = std::make_unique<PreparedModelData>();
    data->input = uploadInput(builder.state(), positionAttribute);
    addDefaults(data->input, builder.state());
    return data;
}

std::unique_ptr<PreparedModelData> copyStreams(const ModelBuilder &builder,
                                               const QString &positionAttribute)
{
    std::unique_ptr<PreparedModelData> data = shareStreams(builder, positionAttribute);
    for (UploadInput::Attribute &attribute : data->input.attributes)
        attribute.values = copied(attribute.values);
    data->input.indices = copied(data->input.indices);
    data->input.allocator = QSharedPointer<ModelDataArrayAllocator>::create();
    return data;
}

} // namespace Halvard::Orv
