#include "support/PreparedOBJ.h"

#include "support/Fuzzing.h"

#include "support/ModelBuilderInspector.h"

#include "Libraries/MaterialLibraries.h"
#include "OBJLinePath.h"
#include "Preparing/GeometryPreparing.h"
#include "Scanning/OBJScanning.h"

#include <OrvCore/InstanceData.h>
#include <OrvModel/DefaultMaterial.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>

#include <algorithm>
#include <sstream>

namespace OrvFuzz {

using namespace Halvard::Orv;
using Inspector = ModelBuilderInspector;

namespace {

const QString &positionsName()
{
    static const QString name = QStringLiteral("va_Vertex");
    return name;
}

QByteArray bytesOf(const QSharedPointer<ModelDataStream> &stream)
{
    if (!stream || stream->isEmpty())
        return {};
    return {static_cast<const char *>(stream->data(0)), static_cast<int>(stream->byteCount())};
}

std::vector<QString> described(const InstanceData &record)
{
    std::vector<QString> lines{record.name()};
    for (const QString &member : record.members())
        lines.push_back(member + QLatin1Char(' ') +
                        QString::fromLatin1(record.value(member).toHex()) + QLatin1Char(' ') +
                        record.texturePath(member));
    return lines;
}

void keepMaterials(ModelBuilder &builder, PreparedOBJ &result)
{
    const auto &groups = Inspector::materialGroups(builder);
    for (auto group = groups.begin(); group != groups.end(); ++group) {
        std::vector<QString> &lines = result.materials[group.key()];
        lines = described(group->instanceData);
        lines.push_back(QString::number(group->id));
    }
}

/// The statistics line begins with the address of a builder, which differs.
void keepMessages(const OrvTest::MessageCapture &capture, PreparedOBJ &result)
{
    result.messages = capture.messages();
    for (OrvTest::Message &message : result.messages) {
        if (message.text.rfind("0x", 0) == 0)
            message.text.erase(0, message.text.find(' '));
    }
}

void addDefaultGroup(ModelBuilder &builder)
{
    builder.createMaterialGroup(QStringLiteral("<default>"), makeDefaultMaterial(), -1, 0);
}

void keepPrepared(const PreparedGeometry &model, PreparedOBJ &result)
{
    for (const PreparedGeometry::Attribute &attribute : model.attributes)
        result.attributes[attribute.name] = bytesOf(attribute.values);
    result.indices = bytesOf(model.indices);
    for (const PreparedGeometry::Command &command : model.commands)
        result.commands.push_back({command.group, command.firstIndex, command.count});
}

void keepPrepared(ModelBuilder &builder, PreparedOBJ &result)
{
    const auto &attributes = Inspector::vertexAttributes(builder);
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        result.attributes[attribute.key()] = bytesOf(attribute->gpuValues);
    result.indices = bytesOf(Inspector::gpuIndices(builder));
    const auto commands = Inspector::drawCommands(builder).value(0);
    const auto groups = Inspector::drawCommandGroups(builder).value(0);
    for (int i = 0; i < commands.size(); ++i)
        result.commands.push_back({groups.at(i), commands.at(i).firstIndex, commands.at(i).count});
}

/// What there is too much of is no part of it: the roads count at different times.
PreparedOBJ tooLarge()
{
    PreparedOBJ result;
    result.isTooLarge = true;
    return result;
}

std::string described(const PreparedOBJ::Command &command)
{
    return command.group.toStdString() + ' ' + std::to_string(command.firstIndex) + ' ' +
           std::to_string(command.count);
}

std::string described(const OrvTest::Message &message)
{
    std::ostringstream text;
    text << message;
    return text.str();
}

template <typename List>
std::string listDifference(const char *name, const List &first, const List &second)
{
    for (std::size_t i = 0; i < std::max(first.size(), second.size()); ++i) {
        const std::string a = i < first.size() ? described(first[i]) : "none";
        const std::string b = i < second.size() ? described(second[i]) : "none";
        if (a != b)
            return std::string(name) + ' ' + std::to_string(i) + ": " + a + " and " + b;
    }
    return {};
}

/// The first 32-bit element that differs.
std::string bytesDifference(const std::string &name, const QByteArray &first,
                            const QByteArray &second)
{
    if (first.size() != second.size())
        return name + ": " + std::to_string(first.size()) + " and " +
               std::to_string(second.size()) + " bytes";
    for (int i = 0; i + 4 <= first.size(); i += 4) {
        const QByteArray a = first.mid(i, 4);
        const QByteArray b = second.mid(i, 4);
        if (a != b)
            return name + " element " + std::to_string(i / 4) + ": bytes " +
                   a.toHex().toStdString() + " and " + b.toHex().toStdString();
    }
    return {};
}

} // namespace

ModelText::ModelText(const QByteArray &input)
{
    const QByteArray border = QByteArrayLiteral("\n#mtl\n");
    const int at = input.indexOf(border);
    obj = at < 0 ? input : input.left(at + 1);
    mtl = at < 0 ? QByteArray() : input.mid(at + border.size());
}

LibraryDirectory &LibraryDirectory::instance()
{
    static LibraryDirectory directory;
    return directory;
}

LibraryDirectory::LibraryDirectory()
{
    static QTemporaryDir directory;
    require(directory.isValid(), "no temporary directory for material libraries");
    _path = directory.path();
    _contents = QByteArrayLiteral("nothing yet");
    write({});
}

void LibraryDirectory::write(const QByteArray &contents)
{
    if (contents == _contents)
        return;
    QFile file(_path + QStringLiteral("/m.mtl"));
    require(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size(),
            "the material library cannot be written");
    _contents = QByteArray(contents.constData(), contents.size()); // owns its bytes
}

bool namesLibraryByPath(const QByteArray &obj)
{
    for (int at = obj.indexOf("mtllib"); at >= 0; at = obj.indexOf("mtllib", at + 1)) {
        const int end = obj.indexOf('\n', at);
        if (obj.mid(at, end < 0 ? -1 : end - at).contains('/'))
            return true;
    }
    return false;
}

OBJScanLimits largeChunks()
{
    OBJScanLimits limits;
    limits.chunkBytes = std::size_t(1) << 15;
    return limits;
}

PreparedOBJ prepareByBytes(const QByteArray &obj, const QString &baseDir,
                           const OBJScanLimits &limits)
{
    QBuffer buffer;
    buffer.setData(obj);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    ModelBuilder builder({}, 0);
    addDefaultGroup(builder);
    MaterialLibraries libraries(builder);
    OBJGeometry geometry;

    PreparedOBJ result;
    const OrvTest::MessageCapture capture;
    switch (scanOBJFile(buffer, baseDir, libraries, geometry, result.libraryPath, limits)) {
    case OBJScanOutcome::Finished:
        keepPrepared(prepareGeometry(std::move(geometry), Inspector::materialGroups(builder).keys(),
                                     &builder),
                     result);
        break;
    case OBJScanOutcome::LibraryMissing:
        result.isLibraryMissing = true;
        break;
    case OBJScanOutcome::NeedsLineReader:
        result.needsLineReader = true;
        return result;
    case OBJScanOutcome::LimitExceeded:
        return tooLarge();
    }
    keepMaterials(builder, result);
    keepMessages(capture, result);
    return result;
}

PreparedOBJ prepareByLines(const QByteArray &obj, const QString &baseDir,
                           const OBJScanLimits &limits)
{
    QBuffer buffer;
    buffer.setData(obj);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    QTextStream stream(&buffer);
    ModelBuilder builder({}, 0);
    addDefaultGroup(builder);

    PreparedOBJ result;
    const OrvTest::MessageCapture capture;
    switch (pourOBJLines(stream, baseDir, builder, result.libraryPath, limits)) {
    case OBJScanOutcome::Finished:
        if (Inspector::prepare(builder, positionsName()))
            keepPrepared(builder, result);
        break;
    case OBJScanOutcome::LibraryMissing:
        result.isLibraryMissing = true;
        break;
    case OBJScanOutcome::LimitExceeded:
        return tooLarge();
    case OBJScanOutcome::NeedsLineReader:
        fail("lines cannot be read by lines");
    }
    keepMaterials(builder, result);
    keepMessages(capture, result);
    return result;
}

std::string difference(const PreparedOBJ &first, const PreparedOBJ &second)
{
    if (first.needsLineReader != second.needsLineReader)
        return "only one must be read by lines";
    if (first.isTooLarge != second.isTooLarge)
        return "only one passes a limit";
    if (first.isLibraryMissing != second.isLibraryMissing ||
        first.libraryPath != second.libraryPath)
        return "missing libraries: '" + first.libraryPath.toStdString() + "' and '" +
               second.libraryPath.toStdString() + '\'';
    if (first.materials != second.materials)
        return "other materials";
    const auto sameName = [](const auto &a, const auto &b) { return a.first == b.first; };
    if (!std::equal(first.attributes.begin(), first.attributes.end(), second.attributes.begin(),
                    second.attributes.end(), sameName))
        return "other attributes: " + std::to_string(first.attributes.size()) + " and " +
               std::to_string(second.attributes.size());
    std::string text;
    for (const auto &[name, values] : first.attributes) {
        if (text.empty())
            text = bytesDifference(name.toStdString(), values, second.attributes.at(name));
    }
    if (text.empty())
        text = bytesDifference("indices", first.indices, second.indices);
    if (text.empty())
        text = listDifference("command", first.commands, second.commands);
    if (text.empty())
        text = listDifference("message", first.messages, second.messages);
    return text;
}

} // namespace OrvFuzz
