#include "support/BuilderScript.h"

#include "support/ModelBuilderInspector.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QDataStream>

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

namespace OrvFuzz {

using namespace Halvard::Orv;
using Inspector = ModelBuilderInspector;
using StreamPointer = Inspector::StreamPointer;

namespace {

constexpr unsigned MostElements = 48;

const QString &positionsName()
{
    static const QString name = QStringLiteral("va_Vertex");
    return name;
}

template <typename Number>
std::vector<Number> numbersOf(const StreamPointer &stream)
{
    std::vector<Number> numbers;
    if (stream && !stream->isEmpty() && stream->byteCount() == stream->size() * sizeof(Number)) {
        numbers.resize(stream->size());
        std::memcpy(numbers.data(), stream->data(0), stream->byteCount());
    }
    return numbers;
}

/// Gives the elements that a stream was made with, whose values are unspecified, some.
void fillWithZeros(const StreamPointer &stream)
{
    if (stream && stream->byteCount() > 0)
        std::memset(stream->data(0), 0, stream->byteCount());
}

/// Face numbers, indices or corner counts: mostly small, now and then anything.
std::vector<unsigned> takeNumbers(Input &input)
{
    std::vector<unsigned> numbers(input.below(MostElements));
    const bool wild = input.below(8) == 0;
    for (unsigned &number : numbers)
        number = wild ? input.take<unsigned>() : input.below(16);
    return numbers;
}

} // namespace

void BuilderScript::run()
{
    while (!_input.isAtEnd()) {
        call();
        checkStreams();
    }
}

void BuilderScript::call()
{
    switch (_input.below(16)) {
    case 0:
    case 1:
        return createAttribute();
    case 2:
    case 3:
        return addValues();
    case 4:
        return addIndices();
    case 5:
        return addFaces();
    case 6:
        return createGroup();
    case 7:
        return addFacesToGroup();
    case 8:
    case 9:
        return addWholeFace();
    case 10:
        return _builder.generateNormals(attributeName());
    case 11:
        return build();
    case 12:
        return _builder.optimizeGPUStreams();
    case 13:
        return prepareGroup();
    case 14:
        return prepare();
    default:
        return ask();
    }
}

void BuilderScript::createAttribute()
{
    const QString name = attributeName();
    const int count = components();
    const unsigned type = elementType();
    const unsigned long values = isHuge() ? hugeCount(type) : _input.below(4);
    const unsigned long indices = isHuge() ? hugeCount(GL_UNSIGNED_INT) : _input.below(4);
    _builder.createVertexAttribute(name, count, type, values, indices);
    const auto attribute = Inspector::vertexAttribute(_builder, name);
    fillWithZeros(attribute.values);
    fillWithZeros(attribute.indices);
}

void BuilderScript::addValues()
{
    const QString name = attributeName();
    const unsigned type = elementType();
    const unsigned long count = _input.below(MostElements);
    QByteArray bytes(static_cast<int>(count * ModelDataStream::typeSize(type)), '\0');
    if (type == GL_FLOAT && _input.flag()) { // of a small lattice: many are the same
        for (unsigned long i = 0; i < count; ++i) {
            const auto value = static_cast<float>(static_cast<int>(_input.below(8)) - 2);
            std::memcpy(bytes.data() + i * sizeof value, &value, sizeof value);
        }
    } else {
        for (char &byte : bytes)
            byte = _input.take<char>();
    }
    _builder.addValuesToVertexAttribute(name, count, bytes.constData(), type);
}

void BuilderScript::addIndices()
{
    const QString name = attributeName();
    const std::vector<unsigned> indices = takeNumbers(_input);
    _builder.addIndicesToVertexAttribute(name, indices.size(), indices.data());
}

void BuilderScript::addFaces()
{
    const std::vector<unsigned> counts = takeNumbers(_input);
    _builder.addVertexCountsToFaces(counts.size(), counts.data());
}

void BuilderScript::createGroup()
{
    const QString name = groupName();
    InstanceData record(QStringLiteral("OBJMaterial"));
    const int id = _input.take<std::int8_t>();
    _builder.createMaterialGroup(name, record, id, _input.below(4));
}

void BuilderScript::addFacesToGroup()
{
    const QString name = groupName();
    const std::vector<unsigned> faces = takeNumbers(_input);
    const QString objectNames[] = {QString(), QStringLiteral(""), QStringLiteral("x")};
    const QString &objectName = objectNames[_input.below(3)];
    _builder.addFacesToMaterialGroup(name, faces.size(), faces.data(), objectName);
}

/// What a loader does for a face: calls that chance alone rarely brings together.
void BuilderScript::addWholeFace()
{
    const QString group = groupName();
    const unsigned count = _input.below(8);
    std::vector<unsigned> indices(count);
    for (unsigned &index : indices)
        index = _input.below(16);
    const auto face =
        static_cast<unsigned>(numbersOf<unsigned>(Inspector::verticesPerFace(_builder)).size());
    _builder.addVertexCountsToFaces(1, &count);
    const QStringList names = Inspector::vertexAttributes(_builder).keys();
    for (const QString &name : names)
        _builder.addIndicesToVertexAttribute(name, count, indices.data());
    _builder.addFacesToMaterialGroup(group, 1, &face, QString());
}

void BuilderScript::build()
{
    const bool deduplicate = _input.flag();
    if (isAffordable())
        _builder.buildGPUFriendlyStreams(deduplicate);
}

/// With streams and offsets that may have nothing to do with one another.
void BuilderScript::prepareGroup()
{
    const QString name = groupName();
    const auto attribute = Inspector::vertexAttribute(_builder, attributeName());
    const auto indices = Inspector::vertexAttribute(_builder, attributeName()).gpuIndices;
    const std::vector<unsigned> offsets = takeNumbers(_input);
    if (attribute.gpuValues && attribute.gpuValues->type() != GL_FLOAT)
        return; // positions are floats
    _builder.prepareMaterialGroupForUpload(name, Inspector::materialGroup(_builder, name),
                                           attribute.gpuValues, indices,
                                           QVector<unsigned>(offsets.begin(), offsets.end()));
}

/// All that upload() does before it needs OpenGL, and a look at all that it would read.
void BuilderScript::prepare()
{
    _builder.upload(nullptr, InstanceData(), positionsName(), QString(), GL_STATIC_DRAW,
                    GL_TRIANGLES); // without a context: nothing
    const StreamPointer before = Inspector::gpuIndices(_builder);
    const bool isFresh = !before || before->isEmpty();
    if (!isAffordable() || !Inspector::prepare(_builder, positionsName()))
        return;
    contentsOf(_builder);
    const auto positions = Inspector::vertexAttribute(_builder, positionsName());
    const unsigned long vertices =
        positions.gpuValues->size() / static_cast<unsigned long>(positions.components);
    for (const unsigned index : numbersOf<unsigned>(Inspector::gpuIndices(_builder)))
        require(!isFresh || index < vertices, "an index selects no vertex");
}

void BuilderScript::ask()
{
    switch (_input.below(8)) {
    case 0:
        return _builder.clear();
    case 1:
        return _builder.removeUnusedVertices();
    case 2:
        return _builder.removeDuplicateVertices();
    default:
        const QString group = groupName();
        require(_builder.hasMaterialGroup(group) || (_builder.materialGroupId(group) == -1 &&
                                                     _builder.materialGroupFlags(group) == 0),
                "an unknown group has an id or flags");
        _builder.isValid();
    }
}

QString BuilderScript::attributeName()
{
    static const QString names[] = {positionsName(), positionsName(), QStringLiteral("va_Normal"),
                                    QStringLiteral("va_TexCoord"), QString()};
    return names[_input.below(5)];
}

QString BuilderScript::groupName()
{
    static const QString names[] = {QStringLiteral("<default>"), QStringLiteral("<default>"),
                                    QStringLiteral("a"), QString()};
    return names[_input.below(4)];
}

unsigned BuilderScript::elementType()
{
    static const unsigned types[] = {GL_FLOAT,  GL_FLOAT,        GL_FLOAT,         GL_FLOAT,
                                     GL_FLOAT,  GL_UNSIGNED_INT, GL_UNSIGNED_BYTE, GL_SHORT,
                                     GL_DOUBLE, 0x1407 /* GL_2_BYTES */};
    const unsigned choice = _input.below(11);
    return choice < std::size(types) ? types[choice] : _input.take<std::uint16_t>();
}

int BuilderScript::components()
{
    static const int counts[] = {3, 3, 3, 3, 2, 4, 1, 0};
    const unsigned choice = _input.below(9);
    return choice < std::size(counts) ? counts[choice] : _input.take<int>();
}

/// So many elements that the low 32 bits of their bytes are few, or, as a signed
/// number, below zero.
unsigned long BuilderScript::hugeCount(unsigned type)
{
    const unsigned long elementSize = std::max(ModelDataStream::typeSize(type), 1ul);
    const unsigned long few = _input.below(MostElements);
    switch (_input.below(3)) {
    case 0:
        return (1ul << 32) / elementSize + few;
    case 1:
        return (1ul << 31) / elementSize + few;
    default:
        return std::numeric_limits<unsigned long>::max() - few;
    }
}

/// Whether building takes little memory: a builder makes a vertex of every corner that
/// it is told of, also of those that nobody gave an index for.
bool BuilderScript::isAffordable()
{
    constexpr quint64 affordable = 1u << 16;
    constexpr quint64 refused = std::numeric_limits<int>::max();
    const auto counts = numbersOf<unsigned>(Inspector::verticesPerFace(_builder));
    const unsigned corners = std::accumulate(counts.begin(), counts.end(), 0u);
    quint64 most = corners;
    for (const auto &attribute : qAsConst(Inspector::vertexAttributes(_builder)))
        most = std::max(most, corners * static_cast<quint64>(std::max(attribute.components, 1)));
    const bool hasAttributes = !Inspector::vertexAttributes(_builder).isEmpty();
    return most <= affordable || (hasAttributes && most > refused);
}

/// No attribute has half of its GPU streams, and all of what is there can be read.
void BuilderScript::checkStreams()
{
    for (const auto &attribute : qAsConst(Inspector::vertexAttributes(_builder)))
        require(attribute.gpuValues.isNull() == attribute.gpuIndices.isNull(),
                "an attribute has half of its GPU streams");
}

namespace {

void write(QDataStream &out, const StreamPointer &stream)
{
    if (!stream) {
        out << false;
        return;
    }
    out << true << stream->type() << static_cast<quint64>(stream->size());
    if (!stream->isEmpty())
        out.writeRawData(static_cast<const char *>(stream->data(0)),
                         static_cast<int>(stream->byteCount()));
}

} // namespace

QByteArray contentsOf(ModelBuilder &builder)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    for (const auto &[name, group] : Inspector::materialGroups(builder)) {
        out << name << group.id << group.flags << group.objectName;
        write(out, group.faces);
    }
    const auto &attributes = Inspector::vertexAttributes(builder);
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute) {
        out << attribute.key() << attribute->components;
        write(out, attribute->values);
        write(out, attribute->indices);
        write(out, attribute->gpuValues);
        write(out, attribute->gpuIndices);
    }
    write(out, Inspector::verticesPerFace(builder));
    write(out, Inspector::gpuIndices(builder));
    const auto &commands = Inspector::drawCommands(builder);
    for (auto list = commands.begin(); list != commands.end(); ++list) {
        for (const DrawElementsIndirectCommand &command : list.value())
            out << list.key() << command.firstIndex << command.count;
        out << Inspector::drawCommandGroups(builder).value(list.key());
    }
    return bytes;
}

} // namespace OrvFuzz
