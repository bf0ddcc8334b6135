/// \file
/// OpenGL buffers.
#pragma once

#include <OrvGL/Bindable.h>
#include <OrvGL/OrvGLExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QSharedPointer>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

class OpenGLDeviceContext;
class ShareGroup;

/// An OpenGL buffer. Made by OpenGLDeviceContext::createBufferObject().
///
/// Usable with that context current, or one that shares objects with it; anything else logs a
/// warning and does nothing. It may be destroyed anywhere: the OpenGL buffer is then deleted as
/// soon as one of those contexts is seen again, or goes with the last of them.
class ORVGL_EXPORT BufferObject : public Bindable
{
public:
    ~BufferObject() override;

    /// Sets the target that bind() binds to, such as GL_ELEMENT_ARRAY_BUFFER. GL_ARRAY_BUFFER until
    /// then. A binding already made stays where it is.
    void setTarget(unsigned int target);

    /// The target set.
    unsigned int target() const { return _target; }

    void bind() override;
    void release() override;
    Binding binding() const override;
    void restore(const Binding &previous) override;

    /// Replaces the contents by `count` 16-bit values; see uploadArbitraryData().
    void uploadGLushortData(const unsigned short *data, int count, unsigned int usage);

    /// Replaces the contents by `count` 32-bit values; see uploadArbitraryData().
    void uploadGLuintData(const unsigned int *data, int count, unsigned int usage);

    /// Replaces the contents by `count` elements of `elementSize` bytes each.
    ///
    /// The buffer need not be bound, and what is bound to any target of drawing stays bound.
    /// \param data `count` x `elementSize` bytes, read before the call returns; null reserves the
    ///     room and leaves its contents undefined.
    /// \param count 0 empties the buffer; so does a negative number, with a warning.
    /// \param usage such as GL_STATIC_DRAW.
    /// \param elementSize bytes of one element.
    ///
    /// When it fails (no memory left on the GPU, an unknown usage, the wrong context current), a
    /// warning is logged, byteCount() is 0 and uploadFailed() is true.
    void uploadArbitraryData(const void *data, int count, unsigned int usage,
                             unsigned long elementSize);

    /// Bytes held on the GPU after the last upload; 0 before the first and after one that failed.
    qint64 byteCount() const { return _byteCount; }

    /// Whether the last upload failed.
    bool uploadFailed() const { return _uploadFailed; }

    /// A copy of the contents, byteCount() bytes, waiting for the GPU where needed. Empty, with a
    /// warning, beyond INT_MAX bytes, in OpenGL ES, and when the buffer's context is not current.
    QByteArray download() const;

    /// The OpenGL name; 0 when the buffer was made while its context was not current.
    unsigned int id() const { return _id; }

    /// Whether there is an OpenGL buffer, and a context that knows it is current.
    bool isUsable() const;

private:
    friend class OpenGLDeviceContext;
    explicit BufferObject(const QSharedPointer<ShareGroup> &group);
    bool checkUsable(const char *operation) const;

    QSharedPointer<ShareGroup> _group;
    unsigned int _id = 0;
    unsigned int _target;
    qint64 _byteCount = 0;
    bool _uploadFailed = false;
};

/// @}

} // namespace Halvard::Orv
