#include <OrvModel/ModelDataStream.h>

#include <OrvGL/OpenGLFunctions.h>

#include <cstring>
#include <limits>

namespace Halvard::Orv {

namespace {

constexpr unsigned FirstType = GL_BYTE;

/// Bytes per element, by type minus FirstType. The three packed types between
/// GL_FLOAT and GL_DOUBLE are no element types, hence 0.
constexpr quint64 TypeSizes[] = {
    1, // GL_BYTE
    1, // GL_UNSIGNED_BYTE
    2, // GL_SHORT
    2, // GL_UNSIGNED_SHORT
    4, // GL_INT
    4, // GL_UNSIGNED_INT
    4, // GL_FLOAT
    0, // GL_2_BYTES
    0, // GL_3_BYTES
    0, // GL_4_BYTES
    8, // GL_DOUBLE
    2  // GL_HALF_FLOAT
};

/// A QByteArray counts its bytes in an int, and keeps one for a final zero and some for
/// its header. Beyond that it asks the system for all the memory that can be addressed
/// before it gives up, so that it is not asked at all.
constexpr int MaxBytes = std::numeric_limits<int>::max() - int(sizeof(QByteArrayData)) - 1;

/// The bytes of so many elements, cut to an int as a QByteArray counts them.
int truncatedBytes(unsigned type, unsigned long count)
{
    const int bytes = static_cast<int>(ModelDataStream::typeSize(type) * count);
    if (bytes > MaxBytes)
        qBadAlloc();
    return bytes;
}

} // namespace

ModelDataStream::~ModelDataStream() = default;

bool ModelDataStream::isEmpty() const
{
    return size() == 0;
}

unsigned long ModelDataStream::byteCount() const
{
    return typeSize(type()) * size();
}

void ModelDataStream::append(unsigned long count, const void *source)
{
    const unsigned long oldSize = size();
    resize(oldSize + count);
    setData(oldSize, count, source);
}

unsigned long ModelDataStream::typeSize(unsigned type)
{
    const unsigned entry = type - FirstType; // wraps for smaller types
    return entry < sizeof(TypeSizes) / sizeof(TypeSizes[0]) ? TypeSizes[entry] : 0;
}

ModelDataArray::ModelDataArray(unsigned type, unsigned long count) : _type(type)
{
    _bytes.resize(truncatedBytes(type, count));
}

ModelDataArray::~ModelDataArray() = default;

unsigned ModelDataArray::type() const
{
    return _type;
}

void ModelDataArray::setType(unsigned type)
{
    if (type == _type)
        return;
    const unsigned long count = size();
    _type = type;
    resize(count);
}

bool ModelDataArray::isEmpty() const
{
    return _bytes.isEmpty();
}

unsigned long ModelDataArray::size() const
{
    const unsigned long elementSize = typeSize(_type);
    return elementSize == 0 ? 0 : static_cast<unsigned long>(_bytes.size()) / elementSize;
}

void ModelDataArray::resize(unsigned long count)
{
    _bytes.resize(truncatedBytes(_type, count));
}

unsigned long ModelDataArray::byteCount() const
{
    return static_cast<unsigned long>(_bytes.size());
}

void *ModelDataArray::data(unsigned long offset)
{
    return _bytes.data() + offset * typeSize(_type);
}

void ModelDataArray::setData(unsigned long offset, unsigned long count, const void *source)
{
    char *bytes = _bytes.data();
    const unsigned long elementSize = typeSize(_type);
    if (count * elementSize != 0) // memcpy must not see a null source
        std::memcpy(bytes + offset * elementSize, source, count * elementSize);
}

void ModelDataArray::append(unsigned long count, const void *source)
{
    // Not all bytes of a count that has been cut. A negative length must not reach
    // QByteArray, which takes it for "up to the first zero byte".
    const int bytes = truncatedBytes(_type, count);
    if (bytes <= 0)
        return;
    if (bytes > MaxBytes - _bytes.size())
        qBadAlloc();
    _bytes.append(static_cast<const char *>(source), bytes);
}

ModelDataStreamAllocator::~ModelDataStreamAllocator() = default;

ModelDataArrayAllocator::~ModelDataArrayAllocator() = default;

ModelDataStream *ModelDataArrayAllocator::alloc(unsigned type, unsigned long count)
{
    return new ModelDataArray(type, count);
}

} // namespace Halvard::Orv
