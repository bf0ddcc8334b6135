#include "ShaderProgram.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

namespace Halvard::Orv::Render {

namespace {

QString shaderLog(unsigned shader)
{
    GLint length = 0;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    QByteArray log(length, '\0');
    glGetShaderInfoLog(shader, length, nullptr, log.data());
    return QString::fromUtf8(log.constData());
}

QString programLog(unsigned program)
{
    GLint length = 0;
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    QByteArray log(length, '\0');
    glGetProgramInfoLog(program, length, nullptr, log.data());
    return QString::fromUtf8(log.constData());
}

/// Compiles and attaches. The shader then lives as long as the program.
bool attachShader(unsigned program, GLenum type, const QByteArray &source, QString *error)
{
    const unsigned shader = glCreateShader(type);
    const char *const text = source.constData();
    const GLint length = source.size();
    glShaderSource(shader, 1, &text, &length);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (!compiled && error)
        *error = shaderLog(shader);
    glAttachShader(program, shader);
    glDeleteShader(shader);
    return compiled;
}

} // namespace

std::unique_ptr<ShaderProgram> ShaderProgram::create(const QByteArray &vertexSource,
                                                     const QByteArray &fragmentSource,
                                                     QString *error)
{
    std::unique_ptr<ShaderProgram> program(new ShaderProgram(glCreateProgram()));
    if (!attachShader(program->_id, GL_VERTEX_SHADER, vertexSource, error) ||
        !attachShader(program->_id, GL_FRAGMENT_SHADER, fragmentSource, error))
        return nullptr;
    glLinkProgram(program->_id);
    GLint linked = GL_FALSE;
    glGetProgramiv(program->_id, GL_LINK_STATUS, &linked);
    if (linked)
        return program;
    if (error)
        *error = programLog(program->_id);
    return nullptr;
}

ShaderProgram::~ShaderProgram()
{
    glDeleteProgram(_id);
}

int ShaderProgram::location(const char *name) const
{
    return glGetUniformLocation(_id, name);
}

void ShaderProgram::set(const char *name, int value)
{
    glProgramUniform1i(_id, location(name), value);
}

void ShaderProgram::set(const char *name, unsigned value)
{
    glProgramUniform1ui(_id, location(name), value);
}

void ShaderProgram::set(const char *name, float value)
{
    glProgramUniform1f(_id, location(name), value);
}

void ShaderProgram::set(const char *name, const QVector3D &value)
{
    glProgramUniform3f(_id, location(name), value.x(), value.y(), value.z());
}

void ShaderProgram::set(const char *name, const QMatrix4x4 &value)
{
    glProgramUniformMatrix4fv(_id, location(name), 1, GL_FALSE, value.constData());
}

void ShaderProgram::set(const char *name, const QColor &value)
{
    glProgramUniform4f(_id, location(name), float(value.redF()), float(value.greenF()),
                       float(value.blueF()), float(value.alphaF()));
}

} // namespace Halvard::Orv::Render
