#include "support/CallerStreams.h"

#include "support/Fuzzing.h"

#include <algorithm>
#include <cstring>

namespace OrvFuzz {

CallerStream::CallerStream(unsigned type, unsigned long count, unsigned long mostElements)
    : _type(type), _mostElements(mostElements)
{
    resize(count);
}

void CallerStream::setType(unsigned type)
{
    _count = std::min(_count, typeSize(_type) * _count / std::max(typeSize(type), 1ul));
    _type = type;
    resize(_count);
}

void CallerStream::resize(unsigned long count)
{
    const unsigned long elementSize = typeSize(_type);
    const unsigned long newCount = elementSize == 0 ? 0 : std::min(count, _mostElements);
    std::unique_ptr<unsigned char[]> memory(new unsigned char[elementSize * newCount]);
    const unsigned long kept = elementSize * std::min(_count, newCount);
    if (kept > 0)
        std::memcpy(memory.get(), _memory.get(), kept);
    // What is new is not zero: nobody may count on that.
    std::fill_n(memory.get() + kept, elementSize * newCount - kept,
                static_cast<unsigned char>(0xCD));
    _memory = std::move(memory);
    _count = newCount;
}

void *CallerStream::data(unsigned long offset)
{
    require(offset <= _count, "data() behind the end of a stream");
    return _memory.get() + offset * typeSize(_type);
}

/// A stream that does not grow is told more than it holds by the base class's
/// append(): it keeps what fits. Any other call behind the end is a mistake.
void CallerStream::setData(unsigned long offset, unsigned long count, const void *source)
{
    require(offset <= _count, "setData() begins behind the end of a stream");
    const unsigned long fitting = std::min(count, _count - offset);
    require(fitting == count || _count == _mostElements || typeSize(_type) == 0,
            "setData() goes on behind the end of a stream");
    if (fitting > 0)
        std::memcpy(data(offset), source, fitting * typeSize(_type));
}

Halvard::Orv::ModelDataStream *CallerAllocator::alloc(unsigned type, unsigned long count)
{
    if (_left.streams == 0)
        return nullptr;
    --_left.streams;
    return new CallerStream(type, count, _left.elements);
}

} // namespace OrvFuzz
