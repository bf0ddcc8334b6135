#include "DebugOutput.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QString>
#include <QtCore/QtDebug>

namespace Halvard::Orv {

namespace {

void GLAPIENTRY logMessage(GLenum, GLenum type, GLuint, GLenum severity, GLsizei length,
                           const GLchar *message, const void *)
{
    if (severity == GL_DEBUG_SEVERITY_NOTIFICATION && type != GL_DEBUG_TYPE_ERROR)
        return; // chatter: where the driver puts which buffer, our own labels and groups
    const QString text = QString::fromUtf8(message, length).trimmed();
    if (type == GL_DEBUG_TYPE_ERROR || severity == GL_DEBUG_SEVERITY_HIGH)
        qWarning("OpenGL: %s", qUtf8Printable(text));
    else
        qDebug("OpenGL: %s", qUtf8Printable(text));
}

} // namespace

void connectDebugOutput()
{
    void *installed = nullptr;
    glGetPointerv(GL_DEBUG_CALLBACK_FUNCTION, &installed);
    if (installed)
        return;
    glDebugMessageCallback(&logMessage, nullptr);
    glEnable(GL_DEBUG_OUTPUT);
    // Else the driver may report from a thread of its own, when the culprit is long gone.
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
}

} // namespace Halvard::Orv
