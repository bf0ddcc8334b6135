/// \file
/// How much memory stands behind a stream.
#pragma once

#include <OrvModel/ModelDataStream.h>

namespace Halvard::Orv {

/// Bytes that may be read from data(0) on. Asks for type and size only: streams
/// that callers bring along see no operation but those that they are promised.
inline unsigned long readableBytes(const ModelDataStream &stream)
{
    return ModelDataStream::typeSize(stream.type()) * stream.size();
}

} // namespace Halvard::Orv
