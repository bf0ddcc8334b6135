// A model whose streams lie in one block of memory:  allocator [MEBIBYTES]
//
// A ModelBuilder asks an allocator for every array that it fills. Here they come from an arena: one
// block, had at once, handed out from front to back, and given back as a whole. It may as well be a
// mapped file, or memory that a graphics card reads.
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelPreparing.h>
#include <OrvModel/PreparedModel.h>
#include <QtCore/QLoggingCategory>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

using namespace Halvard::Orv;

class Arena
{
public:
    explicit Arena(size_t bytes) : _memory(new char[bytes]), _bytes(bytes) {}

    // Room for as many bytes; null where there is no more.
    char *take(size_t bytes)
    {
        constexpr size_t Alignment = alignof(std::max_align_t);
        const size_t rounded = (bytes + Alignment - 1) / Alignment * Alignment;
        if (rounded < bytes || rounded > _bytes - _used)
            return nullptr;
        char *const room = _memory.get() + _used;
        _used += rounded;
        return room;
    }

    size_t bytes() const { return _bytes; }
    size_t used() const { return _used; }

private:
    std::unique_ptr<char[]> _memory;
    size_t _bytes;
    size_t _used = 0;
};

// A growable array in the arena. Where it grows it moves, and what it leaves stays unused.
class ArenaStream : public ModelDataStream
{
public:
    ArenaStream(Arena &arena, unsigned type) : _arena(arena), _type(type) {}

    unsigned type() const override { return _type; }
    unsigned long size() const override { return _count; }
    void *data(unsigned long offset) override { return _data + offset * typeSize(_type); }

    // The number of elements stays; their values may be anything afterwards.
    void setType(unsigned type) override
    {
        const unsigned long count = _count;
        _count = 0; // nothing to keep
        _type = type;
        resize(count);
    }

    void resize(unsigned long count) override
    {
        const size_t needed = size_t(count) * typeSize(_type);
        if (needed > _capacity)
            moveTo(
                std::max(needed, 2 * _capacity)); // twice: appended to one by one, it moves seldom
        _count = count;
    }

    void setData(unsigned long offset, unsigned long count, const void *source) override
    {
        std::memcpy(data(offset), source, count * typeSize(_type));
    }

private:
    void moveTo(size_t capacity)
    {
        char *const room = _arena.take(capacity);
        if (!room)
            throw std::bad_alloc(); // passes through the builder, and leaves nothing half done
        if (_count > 0)
            std::memcpy(room, _data, size_t(_count) * typeSize(_type));
        _data = room;
        _capacity = capacity;
    }

    Arena &_arena; // outlives the stream
    unsigned _type;
    char *_data = nullptr;
    size_t _capacity = 0; // bytes
    unsigned long _count = 0;
};

class ArenaAllocator : public ModelDataStreamAllocator
{
public:
    explicit ArenaAllocator(Arena &arena) : _arena(arena) {}

    ModelDataStream *alloc(unsigned type, unsigned long count) override
    {
        auto stream = std::make_unique<ArenaStream>(_arena, type);
        stream->resize(count);
        ++_streams;
        return stream.release(); // the builder owns it, and deletes it when it is done
    }

    int streams() const { return _streams; }

private:
    Arena &_arena;
    int _streams = 0;
};

// A torus of quads, `around` times `across`.
void addTorus(ModelBuilder &builder, unsigned around, unsigned across)
{
    builder.createMaterialGroup("rubber", InstanceData(), -1, 0);
    builder.createVertexAttribute("va_Vertex", 3, GL_FLOAT, 0, 0);
    const float turn = 2 * std::acos(-1.0f);
    for (unsigned i = 0; i < around; ++i)
        for (unsigned k = 0; k < across; ++k) {
            const float a = turn * float(i) / float(around), b = turn * float(k) / float(across);
            const float ring = 3 + std::cos(b);
            const float position[] = {ring * std::cos(a), std::sin(b), ring * std::sin(a)};
            builder.addValuesToVertexAttribute("va_Vertex", 3, position, GL_FLOAT);
        }
    for (unsigned i = 0; i < around; ++i)
        for (unsigned k = 0; k < across; ++k) {
            const unsigned row = i * across, next = (i + 1) % around * across,
                           up = (k + 1) % across;
            const unsigned corners[] = {row + k, row + up, next + up, next + k};
            const unsigned cornerCount = 4, face = row + k;
            builder.addIndicesToVertexAttribute("va_Vertex", 4, corners);
            builder.addVertexCountsToFaces(1, &cornerCount);
            builder.addFacesToMaterialGroup("rubber", 1, &face, QString());
        }
}

int main(int count, char **arguments)
{
    QLoggingCategory::setFilterRules("default.debug=false"); // what welding did, for example
    const int mebibytes = count > 1 ? std::atoi(arguments[1]) : 64;
    if (count > 2 || mebibytes < 1 || mebibytes > 4096) {
        std::fprintf(stderr, "Usage: allocator [MEBIBYTES], from 1 to 4096\n");
        return 2;
    }
    try {
        Arena arena(size_t(mebibytes) << 20);
        const auto allocator = QSharedPointer<ArenaAllocator>::create(arena);
        ModelBuilder builder(allocator, 0);
        addTorus(builder, 200, 100);
        std::printf("filled: %d streams, %zu bytes\n", allocator->streams(), arena.used());
        builder.generateNormals("va_Normal");
        const auto model = prepareModel(builder, "va_Vertex");
        if (!model) {
            std::fprintf(stderr, "The model cannot be prepared.\n");
            return 1;
        }
        std::printf("prepared: %d streams, %zu of %zu bytes\n", allocator->streams(), arena.used(),
                    arena.bytes());
        std::printf("%u vertices, %u triangles\n", model->vertexCount(), model->indexCount() / 3);
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "%d MiB are not enough.\n", mebibytes);
        return 1;
    }
}
