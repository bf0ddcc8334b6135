#include "support/LoadedOBJ.h"

#include "support/GPUReadBack.h"

#include <OrvGL/OpenGLFunctions.h>

#include <OrvCore/InstanceDataCollection.h>
#include <OrvModel/ModelLoading.h>

#include <algorithm>
#include <sstream>

namespace OrvTest {

using namespace Halvard::Orv;

namespace {

/// The element buffer as 32-bit numbers.
std::vector<unsigned> indicesOf(const DrawBuffers &bundle)
{
    if (bundle.indexType() == GL_UNSIGNED_INT)
        return downloaded<unsigned>(bundle.indexBuffer());
    EXPECT_EQ(bundle.indexType(), unsigned(GL_UNSIGNED_SHORT));
    const auto narrow = downloaded<unsigned short>(bundle.indexBuffer());
    return {narrow.begin(), narrow.end()};
}

InstanceData recordOf(const InstanceDataCollection *collection, int slot)
{
    if (!collection || slot >= collection->records().size()) {
        ADD_FAILURE() << "no record for command " << slot;
        return {};
    }
    return collection->records().at(slot);
}

} // namespace

QString LoadedOBJ::untouched()
{
    return QStringLiteral("nothing has been said");
}

LoadedOBJ::LoadedOBJ(const QString &fileName) : _errorMessage(untouched())
{
    const MessageCapture capture;
    _model.reset(loadModelFromOBJFile(fileName, _errorMessage));
    _statistics = capture.texts(QtDebugMsg);
    for (const Message &message : capture.messages()) {
        if (message.type != QtDebugMsg)
            _warnings.push_back(message);
    }
    if (_model && _model->bundleCount() > 0)
        readBundle();
}

void LoadedOBJ::readBundle()
{
    EXPECT_EQ(_model->bundleCount(), 1);
    const DrawBuffers &bundle = *_model->bundle(0);
    _vertexCount = bundle.vertexCount();
    _indexType = bundle.indexType();
    _indices = indicesOf(bundle);
    EXPECT_EQ(static_cast<int>(_indices.size()), bundle.indexCount());
    EXPECT_EQ(bundle.primitiveType(), unsigned(GL_TRIANGLES));

    for (const auto &attribute : bundle.VAO()->attributes()) {
        EXPECT_EQ(attribute.type, unsigned(GL_FLOAT));
        const Attribute read{attribute.components, downloaded<float>(attribute.buffer)};
        EXPECT_EQ(read.values.size(), _vertexCount * static_cast<unsigned>(read.components));
        _attributes[attribute.name] = read;
    }

    for (int slot = 0; slot < bundle.commands().size(); ++slot) {
        const DrawElementsIndirectCommand command = bundle.commands().at(slot);
        const auto first = _indices.begin() + command.firstIndex;
        if (command.firstIndex + command.count > _indices.size()) {
            ADD_FAILURE() << "command " << slot << " reaches beyond the indices";
            continue;
        }
        _drawn.push_back({_model->materialName(0, slot), _model->objectName(0, slot), command,
                          std::vector<unsigned>(first, first + command.count),
                          recordOf(_model->materials(0), slot),
                          recordOf(_model->instances(0), slot)});
    }
}

std::vector<QString> LoadedOBJ::attributeNames() const
{
    std::vector<QString> names;
    for (const auto &attribute : _attributes)
        names.push_back(attribute.first);
    return names;
}

std::vector<float> LoadedOBJ::values(const char *attribute) const
{
    const auto found = _attributes.find(QLatin1String(attribute));
    return found == _attributes.end() ? std::vector<float>() : found->second.values;
}

int LoadedOBJ::components(const char *attribute) const
{
    const auto found = _attributes.find(QLatin1String(attribute));
    return found == _attributes.end() ? 0 : found->second.components;
}

std::vector<QString> LoadedOBJ::materials() const
{
    std::vector<QString> names;
    for (const Drawn &one : _drawn)
        names.push_back(one.material);
    std::sort(names.begin(), names.end());
    return names;
}

const Drawn &LoadedOBJ::drawnWith(const char *material) const
{
    for (const Drawn &one : _drawn) {
        if (one.material == QLatin1String(material))
            return one;
    }
    ADD_FAILURE() << "nothing is drawn with " << material;
    static const Drawn none;
    return none;
}

std::vector<float> LoadedOBJ::cornerValues(const char *material, const char *attribute) const
{
    std::vector<float> result;
    const std::vector<float> all = values(attribute);
    const auto size = static_cast<std::size_t>(components(attribute));
    for (const unsigned vertex : drawnWith(material).indices) {
        for (std::size_t i = 0; i < size; ++i)
            result.push_back(all.at(vertex * size + i));
    }
    return result;
}

std::vector<float> floatsOf(const InstanceData &record, const char *member)
{
    const QByteArray bytes = record.value(QLatin1String(member));
    std::vector<float> values(static_cast<std::size_t>(bytes.size()) / sizeof(float));
    if (!values.empty())
        std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(float));
    return values;
}

std::vector<std::string> described(const InstanceData &record)
{
    std::vector<std::string> lines;
    for (const QString &member : record.members()) {
        std::ostringstream line;
        line << member.toStdString();
        if (record.texture(member))
            line << " texture";
        else if (!record.texturePath(member).isNull())
            line << ' ' << record.texturePath(member).toStdString();
        else
            for (const float value : floatsOf(record, member.toLatin1().constData()))
                line << ' ' << value;
        lines.push_back(line.str());
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

} // namespace OrvTest
