#include <OrvModel/PreparedModel.h>

#include "PreparedModelData.h"

#include <OrvGL/OpenGLFunctions.h>

#include <algorithm>

namespace Halvard::Orv {

namespace {

/// What an empty model shows, and one that was moved away.
const PreparedModelData &emptyData()
{
    static const PreparedModelData empty;
    return empty;
}

/// Where an attribute stands in the list: positions, normals, then the others.
int rank(const PreparedModel::Attribute &attribute, const QString &positions)
{
    if (attribute.name == positions)
        return 0;
    return attribute.name == QLatin1String("va_Normal") ? 1 : 2;
}

} // namespace

PreparedModel::PreparedModel() = default;
PreparedModel::PreparedModel(std::unique_ptr<PreparedModelData> data) : _data(std::move(data)) {}
PreparedModel::~PreparedModel() = default;
PreparedModel::PreparedModel(PreparedModel &&other) noexcept = default;
PreparedModel &PreparedModel::operator=(PreparedModel &&other) noexcept = default;

const PreparedModelData &PreparedModel::data() const
{
    return _data ? *_data : emptyData();
}

bool PreparedModel::isEmpty() const
{
    return indexCount() == 0;
}

quint32 PreparedModel::vertexCount() const
{
    const UploadInput &input = data().input;
    if (input.attributes.isEmpty())
        return 0;
    const UploadInput::Attribute &positions = input.attributes.at(input.positions);
    return static_cast<quint32>(positions.values.count() /
                                static_cast<unsigned long>(positions.components));
}

quint32 PreparedModel::indexCount() const
{
    return static_cast<quint32>(data().input.indices.count());
}

const quint32 *PreparedModel::indices() const
{
    return indexCount() == 0 ? nullptr : static_cast<const quint32 *>(data().input.indices.data());
}

QVector<PreparedModel::Attribute> PreparedModel::attributes() const
{
    const UploadInput &input = data().input;
    QVector<Attribute> attributes;
    for (const UploadInput::Attribute &attribute : input.attributes) {
        if (attribute.values.type() == GL_FLOAT)
            attributes.append({attribute.name, attribute.components,
                               static_cast<const float *>(attribute.values.data())});
    }
    const QString positions =
        input.attributes.isEmpty() ? QString() : input.attributes.at(input.positions).name;
    std::stable_sort(attributes.begin(), attributes.end(),
                     [&](const Attribute &a, const Attribute &b) {
                         const int rankA = rank(a, positions);
                         const int rankB = rank(b, positions);
                         return rankA != rankB ? rankA < rankB : a.name < b.name;
                     });
    return attributes;
}

QVector<PreparedModel::Command> PreparedModel::commands() const
{
    QVector<Command> commands;
    for (const UploadInput::Batch &batch : data().input.batches) {
        for (const UploadInput::Command &command : batch.commands)
            commands.append({command.group, command.draw.firstIndex, command.draw.count});
    }
    return commands;
}

InstanceData PreparedModel::material(int command) const
{
    for (const UploadInput::Batch &batch : data().input.batches) {
        if (command < batch.commands.size())
            return command < 0 ? InstanceData() : batch.commands.at(command).material;
        command -= batch.commands.size();
    }
    return {};
}

bool PreparedModel::normalsAreGenerated() const
{
    return data().normalsAreGenerated;
}

QVector3D PreparedModel::minimum() const
{
    return data().box().minimum;
}

QVector3D PreparedModel::maximum() const
{
    return data().box().maximum;
}

const PreparationReport &PreparedModel::report() const
{
    return data().report;
}

} // namespace Halvard::Orv
