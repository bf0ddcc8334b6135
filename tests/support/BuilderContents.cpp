#include "support/BuilderContents.h"

#include "support/ModelBuilderInspector.h"

#include <algorithm>
#include <cstring>

namespace OrvTest {

using namespace Halvard::Orv;
using Inspector = ModelBuilderInspector;

namespace {

using Stream = QSharedPointer<ModelDataStream>;

template <typename T>
std::vector<T> elements(const Stream &stream)
{
    std::vector<T> result(stream ? stream->byteCount() / sizeof(T) : 0);
    if (!result.empty())
        std::memcpy(result.data(), stream->data(0), result.size() * sizeof(T));
    return result;
}

unsigned typeOf(const Stream &stream)
{
    return stream ? stream->type() : 0;
}

void addCommand(Bundle &bundle, const QString &group, quint32 firstIndex, quint32 count)
{
    Command command;
    command.material = group;
    command.firstIndex = firstIndex;
    command.count = count;
    bundle.commands.push_back(command);
}

} // namespace

PlainModel contentsOf(ModelBuilder &builder)
{
    PlainModel model;
    const auto &attributes = Inspector::vertexAttributes(builder);
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        model.attributes[attribute.key()] = {attribute->components,
                                             elements<float>(attribute->values),
                                             elements<quint32>(attribute->indices)};
    model.cornerCounts = elements<quint32>(Inspector::verticesPerFace(builder));
    const auto &groups = Inspector::materialGroups(builder);
    model.groups.resize(static_cast<std::size_t>(groups.size()));
    for (const auto &[name, group] : groups)
        model.groups.at(static_cast<std::size_t>(group.id)) = {name, recordOf(group.instanceData),
                                                               elements<quint32>(group.faces)};
    return model;
}

Bundle preparedBundle(ModelBuilder &builder)
{
    Bundle bundle;
    const auto &attributes = Inspector::vertexAttributes(builder);
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        bundle.attributes[attribute.key()] = {attribute->components, typeOf(attribute->gpuValues),
                                              elements<float>(attribute->gpuValues)};
    const Stream indices = Inspector::gpuIndices(builder);
    bundle.indexType = typeOf(indices);
    bundle.indices = elements<quint32>(indices);
    const auto commands = Inspector::drawCommands(builder).value(0);
    const auto groups = Inspector::drawCommandGroups(builder).value(0);
    for (int i = 0; i < commands.size(); ++i)
        addCommand(bundle, groups.at(i), commands.at(i).firstIndex, commands.at(i).count);
    return bundle;
}

Bundle preparedBundle(const PreparedGeometry &model)
{
    Bundle bundle;
    for (const PreparedGeometry::Attribute &attribute : model.attributes)
        bundle.attributes[attribute.name] = {attribute.components, typeOf(attribute.values),
                                             elements<float>(attribute.values)};
    bundle.indexType = typeOf(model.indices);
    bundle.indices = elements<quint32>(model.indices);
    for (const PreparedGeometry::Command &command : model.commands)
        addCommand(bundle, command.group, command.firstIndex, command.count);
    return bundle;
}

} // namespace OrvTest
