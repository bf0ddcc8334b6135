/// \file
/// Storage as a caller might bring it along, which gives less than it is asked for.
#pragma once

#include <OrvModel/ModelDataStream.h>

#include <limits>
#include <memory>

namespace OrvFuzz {

/// How generous an allocator is.
struct Generosity
{
    /// Streams until alloc() gives null.
    unsigned long streams = std::numeric_limits<unsigned long>::max();
    /// Elements beyond which no stream grows, whatever it is asked for.
    unsigned long elements = std::numeric_limits<unsigned long>::max();
};

/// Keeps exactly its elements in memory of its own, and in other memory after every
/// resize: the address sanitizer sees whatever touches something else.
class CallerStream : public Halvard::Orv::ModelDataStream
{
public:
    CallerStream(unsigned type, unsigned long count, unsigned long mostElements);

    unsigned type() const override { return _type; }
    void setType(unsigned type) override;
    unsigned long size() const override { return _count; }
    void resize(unsigned long count) override;
    void *data(unsigned long offset) override;
    void setData(unsigned long offset, unsigned long count, const void *source) override;

private:
    unsigned _type;
    unsigned long _mostElements;
    unsigned long _count = 0;
    std::unique_ptr<unsigned char[]> _memory;
};

class CallerAllocator : public Halvard::Orv::ModelDataStreamAllocator
{
public:
    explicit CallerAllocator(const Generosity &generosity) : _left(generosity) {}

    Halvard::Orv::ModelDataStream *alloc(unsigned type, unsigned long count) override;

private:
    Generosity _left;
};

} // namespace OrvFuzz
