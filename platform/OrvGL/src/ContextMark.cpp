#include "ContextMark.h"

#include <array>

namespace Halvard::Orv {

namespace {

GLuint boundTo(GLenum query)
{
    GLint name = 0;
    glGetIntegerv(query, &name);
    return static_cast<GLuint>(name);
}

} // namespace

ContextMark::ContextMark(GLenum kind, GLuint name, const QByteArray &label)
    : _kind(kind), _name(name), _label(label)
{
    glObjectLabel(_kind, _name, _label.size(), _label.constData());
}

ContextMark ContextMark::ofContext(quint64 number)
{
    const GLuint before = boundTo(GL_VERTEX_ARRAY_BINDING);
    GLuint name = 0;
    glGenVertexArrays(1, &name);
    // A name becomes an object, which can carry a label, when it is first bound.
    glBindVertexArray(name);
    glBindVertexArray(before);
    return {GL_VERTEX_ARRAY, name, "OrvGL context " + QByteArray::number(number)};
}

ContextMark ContextMark::ofShareGroup(quint64 number)
{
    const GLuint before = boundTo(GL_ARRAY_BUFFER_BINDING);
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBindBuffer(GL_ARRAY_BUFFER, before);
    return {GL_BUFFER, name, "OrvGL share group " + QByteArray::number(number)};
}

bool ContextMark::isHere() const
{
    if (isNull())
        return false;
    // Asking for the label of an object that does not exist would be an error.
    if (!(_kind == GL_BUFFER ? glIsBuffer(_name) : glIsVertexArray(_name)))
        return false;
    std::array<char, 64> label{};
    glGetObjectLabel(_kind, _name, static_cast<GLsizei>(label.size()), nullptr, label.data());
    return _label == label.data();
}

} // namespace Halvard::Orv
