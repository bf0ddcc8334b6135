/// \file
/// Typed, growable element arrays, and the allocator interface through which a
/// ModelBuilder obtains them.
#pragma once

#include <OrvModel/OpenGLTypes.h>
#include <OrvModel/OrvModelExport.h>

#include <QtCore/QByteArray>

namespace Halvard::Orv {

/// \addtogroup build
/// @{

/// A growable array of elements of one OpenGL element type, addressed in
/// elements, never in bytes.
///
/// The type is an OpenGL enumerant (GL_FLOAT, GL_UNSIGNED_INT, ...), so that a
/// stream goes to a buffer upload as it is. Derive from it to give a
/// ModelBuilder storage of your own.
///
/// No operation checks bounds: size the stream first, with the allocator's
/// count, resize() or append(). A stream is used by one thread at a time.
class ORVMODEL_EXPORT ModelDataStream
{
public:
    virtual ~ModelDataStream();

    /// The OpenGL type of the elements.
    virtual unsigned type() const = 0;

    /// Changes the element type and keeps the number of elements, not their
    /// values: bytes are neither converted nor moved.
    virtual void setType(unsigned type) = 0;

    /// Whether size() is 0.
    virtual bool isEmpty() const;

    /// Number of elements.
    virtual unsigned long size() const = 0;

    /// Makes the stream `count` elements long. New elements have unspecified
    /// values; shrinking drops the tail.
    virtual void resize(unsigned long count) = 0;

    /// Number of bytes: typeSize(type()) times size().
    virtual unsigned long byteCount() const;

    /// Writable address of element `offset`, valid until the stream is resized
    /// or appended to.
    /// \pre `offset` is at most size().
    virtual void *data(unsigned long offset) = 0;

    /// Copies `count` elements from `source` over the elements from `offset` on.
    /// \pre `offset` + `count` is at most size().
    virtual void setData(unsigned long offset, unsigned long count, const void *source) = 0;

    /// Adds `count` elements copied from `source` at the end. The base version
    /// asks for size(), then calls resize() and setData().
    virtual void append(unsigned long count, const void *source);

    /// Bytes of one element of an OpenGL type (0x1400 to 0x140B); 0 for every
    /// other type and for GL_2_BYTES, GL_3_BYTES and GL_4_BYTES, which streams
    /// do not support.
    static unsigned long typeSize(unsigned type);
};

/// The library's own stream: elements packed in a QByteArray in native byte
/// order.
///
/// Holds somewhat less than 2^31 bytes. A byte count is taken as a signed 32-bit
/// number: of a larger one the low 32 bits count, and where they are negative,
/// resize() empties the stream and append() adds nothing. What does not fit
/// throws std::bad_alloc and leaves the stream as it was. A type for which
/// typeSize() is 0 makes a stream without elements.
class ORVMODEL_EXPORT ModelDataArray : public ModelDataStream
{
public:
    /// Holds `count` elements of unspecified value.
    ModelDataArray(unsigned type, unsigned long count);
    ~ModelDataArray() override;

    unsigned type() const override;
    /// Calls the virtual size() and resize(), so that a subclass that overrides
    /// them is honoured. Nothing happens when the type stays the same.
    void setType(unsigned type) override;
    bool isEmpty() const override;
    unsigned long size() const override;
    void resize(unsigned long count) override;
    unsigned long byteCount() const override;
    void *data(unsigned long offset) override;
    void setData(unsigned long offset, unsigned long count, const void *source) override;
    void append(unsigned long count, const void *source) override;

private:
    unsigned _type;
    QByteArray _bytes;
};

/// Factory of streams: what a ModelBuilder is given to use other storage.
class ORVMODEL_EXPORT ModelDataStreamAllocator
{
public:
    virtual ~ModelDataStreamAllocator();

    /// Returns a new stream of `type` that already holds `count` elements of
    /// unspecified value. The caller owns it and deletes it plainly. Null means
    /// that there is no memory for it; so may an exception, which passes through
    /// the builder's operation. A stream of fewer or of smaller elements than
    /// asked for is not used where something must be written to it.
    ///
    /// \pre Does not change the builder that asks for the stream.
    virtual ModelDataStream *alloc(unsigned type, unsigned long count) = 0;
};

/// Hands out ModelDataArray objects.
class ORVMODEL_EXPORT ModelDataArrayAllocator : public ModelDataStreamAllocator
{
public:
    ~ModelDataArrayAllocator() override;

    ModelDataStream *alloc(unsigned type, unsigned long count) override;
};

/// @}

} // namespace Halvard::Orv
