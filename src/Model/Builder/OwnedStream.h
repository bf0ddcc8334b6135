/// \file
/// A model data stream around an array that exists already.
#pragma once

#include "Memory/GrowArray.h"

#include <OrvModel/ModelDataStream.h>

#include <QtCore/QSharedPointer>

#include <cstring>
#include <utility>

namespace Halvard::Orv {

/// Makes elements a stream without copying them.
///
/// \tparam T what the array is made of; any type can be set later.
template <typename T>
class OwnedStream : public ModelDataStream
{
public:
    /// \param type OpenGL type of `T`.
    OwnedStream(unsigned type, GrowArray<T> &&elements)
        : _type(type), _size(elements.size()), _elements(std::move(elements))
    {}

    static QSharedPointer<ModelDataStream> make(unsigned type, GrowArray<T> &&elements)
    {
        return QSharedPointer<OwnedStream>::create(type, std::move(elements));
    }

    unsigned type() const override { return _type; }

    void setType(unsigned type) override
    {
        _type = type;
        resize(typeSize(type) == 0 ? 0 : _size);
    }

    unsigned long size() const override { return _size; }

    void resize(unsigned long count) override
    {
        _elements.resize((count * typeSize(_type) + sizeof(T) - 1) / sizeof(T));
        _size = count;
    }

    void *data(unsigned long offset) override
    {
        return reinterpret_cast<char *>(_elements.data()) + offset * typeSize(_type);
    }

    void setData(unsigned long offset, unsigned long count, const void *source) override
    {
        if (count * typeSize(_type) != 0) // memcpy must not see a null pointer
            std::memcpy(data(offset), source, count * typeSize(_type));
    }

private:
    unsigned _type;
    unsigned long _size;
    GrowArray<T> _elements;
};

} // namespace Halvard::Orv
