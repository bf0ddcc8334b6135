/// \file
/// A mark by which a context is recognised.
#pragma once

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QByteArray>

namespace Halvard::Orv {

/// A small labelled OpenGL object, by which a context, or a group of contexts that share objects,
/// is known again. Handles are no help: the system hands out those of destroyed contexts again.
///
/// All functions work on the current context, which has the debug labels of OpenGL 4.3 or
/// KHR_debug.
class ContextMark
{
public:
    /// No mark.
    ContextMark() = default;

    /// Marks the current context only: a vertex array, a kind of object that is never shared.
    static ContextMark ofContext(quint64 number);

    /// Marks all contexts that share with the current one: a buffer.
    static ContextMark ofShareGroup(quint64 number);

    bool isNull() const { return _name == 0; }

    /// Whether the current context has this mark; false for a null one.
    bool isHere() const;

private:
    ContextMark(GLenum kind, GLuint name, const QByteArray &label);

    GLenum _kind = GL_NONE;
    GLuint _name = 0;
    QByteArray _label;
};

} // namespace Halvard::Orv
