/// \file
/// A loaded model: everything that can be seen of it on the GPU, and what was said, as plain
/// values.
#pragma once

#include "support/MessageCapture.h"
#include "support/ModelRecord.h"

#include <QtCore/QString>

#include <map>
#include <string>
#include <vector>

namespace OrvTest {

struct Collection
{
    bool isPresent = false;
    QString name;
    std::vector<Record> records;
};

/// One draw command and the names that belong to it.
struct Command
{
    quint32 count = 0;
    quint32 instanceCount = 1;
    quint32 firstIndex = 0;
    qint32 baseVertex = 0;
    quint32 baseInstance = 0;
    QString material;
    QString object;
};

/// A vertex buffer: `components` floats per vertex, and the OpenGL type that it is said to have.
struct VertexBuffer
{
    int components = 0;
    unsigned type = 0;
    std::vector<float> values;
};

struct Bundle
{
    quint64 key = 0;
    int instanceCount = 1;
    unsigned primitiveType = 0;
    unsigned vertexCount = 0;
    unsigned indexType = 0;
    std::vector<quint32> indices;
    std::map<QString, VertexBuffer> attributes;
    std::vector<Command> commands;
    Collection materials;
    Collection instances;

    /// Values of an attribute, vertex by vertex; empty when there is none.
    std::vector<float> values(const char *attribute) const;
    int triangleCount() const;
    /// The materials' names in the order of the commands.
    std::vector<QString> materialNames() const;
};

struct UploadedModel
{
    /// Where a load leaves the error message alone, it stays this.
    static QString untouchedError();

    /// The one bundle of a loaded file: the loader batches everything under one key. An
    /// empty one where there is none.
    const Bundle &bundle() const;
    /// The texts of the warnings.
    std::vector<std::string> warnings() const;

    bool isNull = false;
    QString error = untouchedError();
    bool hasGeneratedNormals = false; ///< Known to the reference implementation only.
    std::vector<Bundle> bundles;
    std::vector<Message> messages;
};

/// The messages with "(address)" for the address at the head of the welding statistics.
std::vector<Message> withoutAddresses(std::vector<Message> messages);

} // namespace OrvTest
