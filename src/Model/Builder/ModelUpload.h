/// \file
/// The last step of every load: a model in memory becomes buffers and bundles.
#pragma once

#include <OrvModel/ModelDataStream.h>

#include <OrvCore/InstanceData.h>
#include <OrvGL/DrawBuffers.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <vector>

namespace Halvard::Orv {

class BufferObject;
class GPUModel;
class OpenGLDeviceContext;

/// Elements of one OpenGL type: an array in memory, or a stream.
///
/// A stream is asked each time, and only when the answer is needed: callers who bring
/// their own see the calls that they are promised.
class UploadElements
{
public:
    UploadElements() = default;
    /// \param data not owned; must stay until the upload ends.
    UploadElements(unsigned type, unsigned long count, const void *data)
        : _type(type), _count(count), _data(data)
    {}
    explicit UploadElements(const QSharedPointer<ModelDataStream> &stream) : _stream(stream) {}

    unsigned type() const { return _stream ? _stream->type() : _type; }
    unsigned long count() const { return _stream ? _stream->size() : _count; }
    const void *data() const { return _stream ? _stream->data(0) : _data; }

private:
    QSharedPointer<ModelDataStream> _stream; // null for an array
    unsigned _type = 0;
    unsigned long _count = 0;
    const void *_data = nullptr;
};

/// Draws `count` entries of the indices from `firstIndex` on.
DrawElementsIndirectCommand drawCommand(quint32 firstIndex, quint32 count);

/// All that a model on the GPU is made of.
struct UploadInput
{
    struct Attribute
    {
        QString name;
        int components;
        UploadElements values;
    };

    /// A draw command, and the material group whose triangles it draws.
    struct Command
    {
        DrawElementsIndirectCommand draw;
        QString group;
        InstanceData material;
        int id;
        QString objectName;
    };

    /// The commands that one bundle draws.
    struct Batch
    {
        quint64 key;
        QVector<Command> commands;
    };

    QVector<Attribute> attributes;
    /// Which of the attributes has the positions; its length is the number of vertices.
    int positions = 0;
    /// Vertex numbers, 32 bits each, three a triangle.
    UploadElements indices;
    QVector<Batch> batches;

    InstanceData instanceData; ///< copied for every command
    QString materialIdMember;  ///< as of ModelBuilder::upload()
    unsigned usage = 0;        ///< of the buffers
    unsigned primitiveType = 0;
    /// Makes the stream of narrowed indices.
    QSharedPointer<ModelDataStreamAllocator> allocator;
};

/// Uploads a model buffer by buffer, so that a program can draw in between.
///
///     UploadSteps upload(std::move(input), context, model);
///     while (upload.step())
///         ;
///
/// Nothing appears in the model before the last step, which adds one bundle per batch.
/// It adds none when a buffer could not be made or filled, nor when `upload` is destroyed
/// before.
class UploadSteps
{
public:
    /// \param context current at every step.
    /// \param model receives the bundles; not owned.
    UploadSteps(UploadInput &&input, const QSharedPointer<OpenGLDeviceContext> &context,
                GPUModel &model);

    /// Makes the next buffer: the indices, then an attribute's values each; and at last
    /// the bundles.
    /// \return whether there is more to do.
    ///
    /// What a stream or the allocator throws passes through, and ends the upload. Streams
    /// are asked for their type once more in the last step, each for each bundle right
    /// before it is added: they must not throw there once a bundle has been added.
    bool step();

    /// How much of the data has been uploaded, from 0 to 1.
    double fraction() const;

    /// Whether all bundles are in the model.
    bool hasSucceeded() const { return _hasSucceeded; }

private:
    struct ValueBuffer
    {
        QSharedPointer<BufferObject> buffer;
        unsigned type;
    };
    struct NewBundle;

    bool uploadIndices();
    void uploadValues(const UploadInput::Attribute &attribute);
    void addBundles();
    NewBundle newBundle(const UploadInput::Batch &batch) const;
    void askTypes(DrawBuffers &buffers) const;
    bool addBundle(NewBundle &bundle, const UploadInput::Batch &batch);

    const UploadInput _input;
    QSharedPointer<OpenGLDeviceContext> _context;
    GPUModel &_model;
    bool _isDone = false;
    bool _hasSucceeded = false;
    int _vertexCount = 0;
    int _indexCount = 0;
    unsigned _indexType = 0;
    QSharedPointer<BufferObject> _indices;
    QVector<ValueBuffer> _values; // of the first attributes
};

/// All steps in one go.
/// \return whether all bundles are in the model.
bool uploadModel(UploadInput &&input, const QSharedPointer<OpenGLDeviceContext> &context,
                 GPUModel &model);

} // namespace Halvard::Orv
