/// \file
/// The current OpenGL context and what it makes.
#pragma once

#include <OrvGL/OrvGLExport.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>

#include <memory>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

class BufferObject;
class HeadlessContext;
class ShareGroup;
class VertexArrayObject;
struct NativeContext;

/// An OpenGL context that somebody made current: a window toolkit, an EGL or GLX program, or
/// HeadlessContext. It is found, not made: this class never creates or destroys a context.
///
/// A native context that is destroyed leaves its object behind, useless but safe; a new context is
/// never taken for an old one, even where the system gives it the same handle. They are told apart
/// by a small labelled OpenGL object; where the driver has no labels (before OpenGL 4.3 and
/// KHR_debug, and in OpenGL ES), by version and renderer only.
class ORVGL_EXPORT OpenGLDeviceContext
{
public:
    /// The context current on the calling thread; null when there is none. The same context gives
    /// the same object every time, on whatever thread. Null, too, after a warning, where the
    /// library with the functions of its kind of OpenGL is not installed.
    ///
    /// On the first sight of a context it is connected to Qt's logger: with KHR_debug, errors and
    /// messages of high severity become warnings, those of medium and low severity debug messages,
    /// and notifications are dropped. A debug callback that the application installed itself is
    /// left alone.
    ///
    /// Every call also deletes the OpenGL objects of this context whose owners were destroyed while
    /// it was not current.
    static QSharedPointer<OpenGLDeviceContext> current();

    ~OpenGLDeviceContext();
    OpenGLDeviceContext(const OpenGLDeviceContext &) = delete;
    OpenGLDeviceContext &operator=(const OpenGLDeviceContext &) = delete;

    /// Makes an empty buffer. This context must be current, else the buffer has no OpenGL object, a
    /// warning says so, and every operation on it does nothing.
    QSharedPointer<BufferObject> createBufferObject();

    /// Makes an empty set of vertex attributes. Needs no context to be current.
    QSharedPointer<VertexArrayObject> createVertexArrayObject();

    /// Whether this is the context current on the calling thread.
    bool isCurrent() const;

    /// Desktop OpenGL's version times ten, 46 for OpenGL 4.6; 0 for OpenGL ES.
    int version() const;

    /// Whether glMultiDrawElementsIndirect may be called: OpenGL 4.3 or ARB_multi_draw_indirect.
    bool hasMultiDrawIndirect() const;

    /// Whether shaders know the number of the draw in a multi-draw: gl_DrawID of GLSL 4.60, or
    /// gl_DrawIDARB after `#extension GL_ARB_shader_draw_parameters : require`. True for OpenGL 4.6
    /// only where the driver lists the extension as well, so that gl_DrawIDARB always works.
    bool hasDrawParameters() const;

    /// Version and renderer for people to read, as the driver spells them.
    QString description() const;

private:
    friend class HeadlessContext;
    friend class ShareGroup;
    friend class VertexArrayObject;
    struct Private;

    OpenGLDeviceContext();
    static QSharedPointer<OpenGLDeviceContext> find(const NativeContext &native);
    static QSharedPointer<OpenGLDeviceContext> meet(const NativeContext &native);
    static QSharedPointer<ShareGroup> groupOfCurrentContext(bool canMark);
    static void forget(void *eglContext);
    void destroyVertexArray(unsigned int name);
    void deletePending();

    std::unique_ptr<Private> _d;
};

/// @}

} // namespace Halvard::Orv
