/// \file
/// Everything that can be seen of a loaded model, as plain values.
#pragma once

#include "support/MessageCapture.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <map>
#include <string>
#include <vector>

namespace OrvReference {

/// A member of a record: bytes, or a texture's path, or a texture object.
struct Member
{
    QString name;
    QByteArray bytes;
    QString path;
    bool isTexture = false;
};

/// A material or an instance record. Members stand in the order in which they were first set.
struct Record
{
    QString plan;
    std::vector<Member> members;

    /// Sets a member to `value`, in place when there is one of that name.
    void set(const Member &value);
};

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

/// A vertex buffer: `components` values of an OpenGL type per vertex.
struct VertexBuffer
{
    int components = 0;
    unsigned type = 0;
    QByteArray bytes;
};

/// The one bundle of a model: the loader batches everything under one key.
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
};

struct UploadedModel
{
    /// Where a load leaves the error message alone, it stays this.
    static QString untouchedError();

    bool isNull = false;
    QString error = untouchedError();
    bool hasGeneratedNormals = false; ///< Known to the judge only.
    std::vector<Bundle> bundles;
    std::vector<OrvTest::Message> messages;
};

/// The messages with the address at the head of the welding statistics cut off.
std::vector<OrvTest::Message> withoutAddresses(std::vector<OrvTest::Message> messages);

} // namespace OrvReference
