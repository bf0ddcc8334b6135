#include "support/LoadedOBJ.h"

#include "support/ModelReadBack.h"

#include <OrvGL/OpenGLFunctions.h>
#include <OrvModel/ModelLoading.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace OrvTest {

using namespace Halvard::Orv;

namespace {

Record recordAt(const Collection &collection, std::size_t slot)
{
    if (slot >= collection.records.size()) {
        ADD_FAILURE() << "no record for command " << slot;
        return {};
    }
    return collection.records[slot];
}

} // namespace

LoadedOBJ::LoadedOBJ(const QString &fileName)
{
    _uploaded = readBackFrom([&](QString &error) {
        _model.reset(loadModelFromOBJFile(fileName, error));
        return _model.get();
    });
    if (!isEmpty()) {
        checkBundle();
        findDrawn();
    }
}

void LoadedOBJ::checkBundle() const
{
    EXPECT_EQ(_uploaded.bundles.size(), 1u);
    const Bundle &bundle = _uploaded.bundle();
    EXPECT_EQ(bundle.primitiveType, unsigned(GL_TRIANGLES));
    if (bundle.indexType != GL_UNSIGNED_INT) {
        EXPECT_EQ(bundle.indexType, unsigned(GL_UNSIGNED_SHORT));
    }
    for (const auto &[name, buffer] : bundle.attributes) {
        EXPECT_EQ(buffer.type, unsigned(GL_FLOAT)) << name.toStdString();
        EXPECT_EQ(buffer.values.size(),
                  bundle.vertexCount * static_cast<unsigned>(buffer.components))
            << name.toStdString();
    }
}

void LoadedOBJ::findDrawn()
{
    const Bundle &bundle = _uploaded.bundle();
    for (std::size_t slot = 0; slot < bundle.commands.size(); ++slot) {
        const Command &command = bundle.commands[slot];
        if (command.firstIndex + command.count > bundle.indices.size()) {
            ADD_FAILURE() << "command " << slot << " reaches beyond the indices";
            continue;
        }
        const auto first = bundle.indices.begin() + command.firstIndex;
        _drawn.push_back({command, std::vector<unsigned>(first, first + command.count),
                          recordAt(bundle.materials, slot), recordAt(bundle.instances, slot)});
    }
}

std::vector<Message> LoadedOBJ::warnings() const
{
    std::vector<Message> warnings;
    for (const Message &message : _uploaded.messages) {
        if (message.type != QtDebugMsg)
            warnings.push_back(message);
    }
    return warnings;
}

std::vector<std::string> LoadedOBJ::statistics() const
{
    std::vector<std::string> lines;
    for (const Message &message : _uploaded.messages) {
        if (message.type == QtDebugMsg)
            lines.push_back(message.text);
    }
    return lines;
}

std::vector<QString> LoadedOBJ::attributeNames() const
{
    std::vector<QString> names;
    for (const auto &[name, buffer] : _uploaded.bundle().attributes)
        names.push_back(name);
    return names;
}

std::vector<float> LoadedOBJ::values(const char *attribute) const
{
    return _uploaded.bundle().values(attribute);
}

int LoadedOBJ::components(const char *attribute) const
{
    const auto &attributes = _uploaded.bundle().attributes;
    const auto found = attributes.find(QLatin1String(attribute));
    return found == attributes.end() ? 0 : found->second.components;
}

std::vector<QString> LoadedOBJ::materials() const
{
    std::vector<QString> names = _uploaded.bundle().materialNames();
    std::sort(names.begin(), names.end());
    return names;
}

const Drawn &LoadedOBJ::drawnWith(const char *material) const
{
    for (const Drawn &one : _drawn) {
        if (one.command.material == QLatin1String(material))
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

} // namespace OrvTest
