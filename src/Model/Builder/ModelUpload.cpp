#include "Builder/ModelUpload.h"

#include "Builder/StreamBytes.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>

#include <QtCore/QList>

#include <algorithm>
#include <memory>

namespace Halvard::Orv {

namespace {

/// Most vertices that 16-bit indices are used for: one below the largest 16-bit
/// value, which stays free as a marker.
constexpr int MaxVerticesFor16Bit = 65534;

/// Bound while the object lives, also when something throws.
class BoundBuffer
{
public:
    explicit BoundBuffer(BufferObject &buffer) : _buffer(buffer) { _buffer.bind(); }
    ~BoundBuffer() { _buffer.release(); }
    BoundBuffer(const BoundBuffer &) = delete;
    BoundBuffer &operator=(const BoundBuffer &) = delete;

private:
    BufferObject &_buffer;
};

unsigned long byteCount(const UploadElements &elements)
{
    return elements.count() * ModelDataStream::typeSize(elements.type());
}

/// The indices with 16 bits each; null when there is no stream for them.
std::unique_ptr<ModelDataStream> narrowed(const UploadElements &indices, unsigned long count,
                                          ModelDataStreamAllocator &allocator)
{
    std::unique_ptr<ModelDataStream> stream(allocator.alloc(GL_UNSIGNED_SHORT, count));
    if (!holds(stream.get(), GL_UNSIGNED_SHORT, count))
        return nullptr;
    const auto *first = static_cast<const unsigned *>(indices.data());
    std::transform(first, first + count, static_cast<unsigned short *>(stream->data(0)),
                   [](unsigned index) { return static_cast<unsigned short>(index); });
    return stream;
}

/// A collection named `name`; null for an empty list.
std::unique_ptr<InstanceDataCollection> newCollection(const QString &name,
                                                      const QList<InstanceData> &records)
{
    return records.isEmpty() ? nullptr : std::make_unique<InstanceDataCollection>(name, records);
}

QVector<DrawElementsIndirectCommand> drawCommands(const QVector<UploadInput::Command> &commands)
{
    QVector<DrawElementsIndirectCommand> draws;
    draws.reserve(commands.size());
    for (const UploadInput::Command &command : commands)
        draws.append(command.draw);
    return draws;
}

} // namespace

DrawElementsIndirectCommand drawCommand(quint32 firstIndex, quint32 count)
{
    DrawElementsIndirectCommand command;
    command.count = count;
    command.instanceCount = 1;
    command.firstIndex = firstIndex;
    command.baseVertex = 0; // vertex numbers are absolute: all groups share one set
    command.baseInstance = 0;
    return command;
}

/// Everything that a model takes over with one bundle.
struct UploadSteps::NewBundle
{
    std::unique_ptr<DrawBuffers> buffers;
    std::unique_ptr<InstanceDataCollection> materials;
    std::unique_ptr<InstanceDataCollection> instances;
};

UploadSteps::UploadSteps(UploadInput &&input, const QSharedPointer<OpenGLDeviceContext> &context,
                         GPUModel &model)
    : _input(std::move(input)), _context(context), _model(model)
{}

bool UploadSteps::step()
{
    if (_isDone)
        return false;
    _isDone = true; // unless this step ends well
    if (!_indices) {
        if (!uploadIndices())
            return false;
    } else if (_values.size() < _input.attributes.size()) {
        uploadValues(_input.attributes.at(_values.size()));
    } else {
        addBundles();
        return false;
    }
    _isDone = false;
    return true;
}

double UploadSteps::fraction() const
{
    unsigned long all = byteCount(_input.indices);
    unsigned long uploaded = _indices ? all : 0;
    for (int i = 0; i < _input.attributes.size(); ++i) {
        const unsigned long bytes = byteCount(_input.attributes.at(i).values);
        all += bytes;
        uploaded += i < _values.size() ? bytes : 0;
    }
    return all == 0 || _isDone ? 1.0 : static_cast<double>(uploaded) / static_cast<double>(all);
}

/// The one element buffer, narrowed to 16 bits where the vertices allow it. False
/// when the narrowed stream cannot be had.
bool UploadSteps::uploadIndices()
{
    QSharedPointer<BufferObject> buffer = _context->createBufferObject();
    buffer->setTarget(GL_ELEMENT_ARRAY_BUFFER);
    const BoundBuffer bound(*buffer);
    const UploadInput::Attribute &positions = _input.attributes.at(_input.positions);
    _vertexCount = static_cast<int>(positions.values.count() /
                                    static_cast<unsigned long>(positions.components));
    const unsigned long count = _input.indices.count();
    _indexCount = static_cast<int>(count);
    _indexType = _input.indices.type();
    if (ModelDataStream::typeSize(_indexType) != sizeof(unsigned))
        return false; // the allocator has handed out other elements
    if (_vertexCount <= MaxVerticesFor16Bit) {
        const auto stream = narrowed(_input.indices, count, *_input.allocator);
        if (!stream)
            return false;
        buffer->uploadGLushortData(static_cast<const unsigned short *>(stream->data(0)),
                                   static_cast<int>(stream->size()), _input.usage);
        _indexType = GL_UNSIGNED_SHORT;
    } else {
        buffer->uploadGLuintData(static_cast<const unsigned *>(_input.indices.data()), _indexCount,
                                 _input.usage);
    }
    _indices = buffer;
    return true;
}

void UploadSteps::uploadValues(const UploadInput::Attribute &attribute)
{
    const QSharedPointer<BufferObject> buffer = _context->createBufferObject();
    buffer->setTarget(GL_ARRAY_BUFFER);
    const BoundBuffer bound(*buffer);
    const void *data = attribute.values.data();
    const auto count = static_cast<int>(attribute.values.count());
    const unsigned type = attribute.values.type();
    buffer->uploadArbitraryData(data, count, _input.usage, ModelDataStream::typeSize(type));
    _values.append({buffer, type});
}

/// Hands one bundle per batch to the model, or none.
void UploadSteps::addBundles()
{
    // Everything is made before the first is added: the model must not get a part when
    // memory ends.
    std::vector<NewBundle> bundles;
    for (const UploadInput::Batch &batch : _input.batches)
        bundles.push_back(newBundle(batch));
    for (size_t i = 0; i < bundles.size(); ++i) {
        askTypes(*bundles[i].buffers);
        if (!addBundle(bundles[i], _input.batches.at(static_cast<int>(i))))
            return;
    }
    _hasSucceeded = true;
}

/// A bundle with the records of its commands.
UploadSteps::NewBundle UploadSteps::newBundle(const UploadInput::Batch &batch) const
{
    NewBundle bundle;
    bundle.buffers = std::make_unique<DrawBuffers>(nullptr);
    bundle.buffers->setVAO(_context->createVertexArrayObject());
    bundle.buffers->setIndexedDraw(_indices, _indexCount, _indexType);
    bundle.buffers->setVertexCount(static_cast<unsigned>(_vertexCount));
    bundle.buffers->setPrimitiveType(_input.primitiveType);
    const QVector<DrawElementsIndirectCommand> draws = drawCommands(batch.commands);
    bundle.buffers->setDrawElementsIndirectCommands(draws.constData(), draws.size());
    for (int i = 0; i < _input.attributes.size(); ++i)
        bundle.buffers->VAO()->registerBO(_input.attributes.at(i).name, _values.at(i).buffer,
                                          _input.attributes.at(i).components, _values.at(i).type);

    QList<InstanceData> materials;
    QList<InstanceData> instances;
    for (const UploadInput::Command &command : batch.commands) {
        InstanceData instance = _input.instanceData;
        if (_input.materialIdMember.isNull())
            materials.append(command.material);
        else
            instance.set(_input.materialIdMember, &command.id, sizeof command.id);
        instances.append(instance);
    }
    bundle.materials =
        newCollection(materials.isEmpty() ? QString() : materials.first().name(), materials);
    bundle.instances = newCollection(_input.instanceData.name(), instances);
    return bundle;
}

/// Asks the streams for their types as often as there are bundles, and right before a
/// bundle is added. What was asked for the buffers holds already, nearly always.
void UploadSteps::askTypes(DrawBuffers &buffers) const
{
    for (int i = 0; i < _input.attributes.size(); ++i) {
        const UploadInput::Attribute &attribute = _input.attributes.at(i);
        const unsigned type = attribute.values.type();
        if (type != _values.at(i).type)
            buffers.VAO()->registerBO(attribute.name, _values.at(i).buffer, attribute.components,
                                      type);
    }
}

/// Hands a bundle to the model, and the names of its commands.
/// \return false when the model does not take it: the GPU has no room for it.
bool UploadSteps::addBundle(NewBundle &bundle, const UploadInput::Batch &batch)
{
    const int index = _model.add(bundle.buffers.release(), 1, bundle.materials.release(),
                                 bundle.instances.release(), batch.key);
    if (index < 0)
        return false;
    for (int slot = 0; slot < batch.commands.size(); ++slot) {
        _model.addMaterialName(index, slot, batch.commands.at(slot).group);
        _model.addObjectName(index, slot, batch.commands.at(slot).objectName);
    }
    return true;
}

bool uploadModel(UploadInput &&input, const QSharedPointer<OpenGLDeviceContext> &context,
                 GPUModel &model)
{
    UploadSteps upload(std::move(input), context, model);
    while (upload.step()) {
    }
    return upload.hasSucceeded();
}

} // namespace Halvard::Orv
