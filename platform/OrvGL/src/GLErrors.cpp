#include "GLErrors.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QString>
#include <QtCore/QtDebug>

namespace Halvard::Orv {

namespace {

const char *nameOf(GLenum error)
{
    switch (error) {
    case GL_INVALID_ENUM:
        return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
        return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
        return "GL_INVALID_OPERATION";
    case GL_INVALID_FRAMEBUFFER_OPERATION:
        return "GL_INVALID_FRAMEBUFFER_OPERATION";
    case GL_OUT_OF_MEMORY:
        return "GL_OUT_OF_MEMORY";
    case GL_STACK_OVERFLOW:
        return "GL_STACK_OVERFLOW";
    case GL_STACK_UNDERFLOW:
        return "GL_STACK_UNDERFLOW";
    case GL_CONTEXT_LOST:
        return "GL_CONTEXT_LOST";
    default:
        return "of unknown kind";
    }
}

} // namespace

bool reportGLErrors(const QString &when)
{
    // One flag per kind of error at most; a lost context answers forever.
    constexpr int MostFlags = 8;
    bool any = false;
    for (int i = 0; i < MostFlags; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR)
            break;
        any = true;
        qWarning("OpenGL error %s (0x%x) %s", nameOf(error), error, qUtf8Printable(when));
    }
    return any;
}

} // namespace Halvard::Orv
