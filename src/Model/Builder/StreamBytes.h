/// \file
/// How much memory stands behind a stream.
///
/// Streams come from a caller's allocator, which may hand out less than it is asked for,
/// or smaller elements. Asks for data, type and size only: streams that callers bring
/// along see no operation but those that they are promised.
#pragma once

#include <OrvModel/ModelDataStream.h>

#include <QtCore/QSharedPointer>

#include <algorithm>

namespace Halvard::Orv {

/// Bytes that may be read from data(0) on.
inline unsigned long readableBytes(const ModelDataStream &stream)
{
    return ModelDataStream::typeSize(stream.type()) * stream.size();
}

/// Whether there is a stream of so many elements, of the size that `type` has.
inline bool holds(const ModelDataStream *stream, unsigned type, unsigned long count)
{
    return stream && stream->size() >= count &&
           ModelDataStream::typeSize(stream->type()) == ModelDataStream::typeSize(type);
}

inline bool holds(const QSharedPointer<ModelDataStream> &stream, unsigned type, unsigned long count)
{
    return holds(stream.data(), type, count);
}

/// The 32-bit numbers in a stream, whatever it calls them: none for a null stream, and no
/// more than it has bytes for.
struct StreamNumbers
{
    explicit StreamNumbers(const QSharedPointer<ModelDataStream> &stream)
        : data(stream ? static_cast<unsigned *>(stream->data(0)) : nullptr),
          size(stream ? std::min(stream->size(), readableBytes(*stream) / sizeof(unsigned)) : 0)
    {}

    unsigned *data;
    unsigned long size;
};

} // namespace Halvard::Orv
