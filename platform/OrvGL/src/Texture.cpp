#include <OrvGL/Texture.h>

#include "ShareGroup.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QtDebug>

namespace Halvard::Orv {

namespace {

// The query for what is bound to `target`; GL_NONE for an unknown target.
GLenum bindingQueryOf(GLenum target)
{
    switch (target) {
    case GL_TEXTURE_1D:
        return GL_TEXTURE_BINDING_1D;
    case GL_TEXTURE_2D:
        return GL_TEXTURE_BINDING_2D;
    case GL_TEXTURE_3D:
        return GL_TEXTURE_BINDING_3D;
    case GL_TEXTURE_1D_ARRAY:
        return GL_TEXTURE_BINDING_1D_ARRAY;
    case GL_TEXTURE_2D_ARRAY:
        return GL_TEXTURE_BINDING_2D_ARRAY;
    case GL_TEXTURE_RECTANGLE:
        return GL_TEXTURE_BINDING_RECTANGLE;
    case GL_TEXTURE_CUBE_MAP:
        return GL_TEXTURE_BINDING_CUBE_MAP;
    case GL_TEXTURE_CUBE_MAP_ARRAY:
        return GL_TEXTURE_BINDING_CUBE_MAP_ARRAY;
    case GL_TEXTURE_BUFFER:
        return GL_TEXTURE_BINDING_BUFFER;
    case GL_TEXTURE_2D_MULTISAMPLE:
        return GL_TEXTURE_BINDING_2D_MULTISAMPLE;
    case GL_TEXTURE_2D_MULTISAMPLE_ARRAY:
        return GL_TEXTURE_BINDING_2D_MULTISAMPLE_ARRAY;
    default:
        return GL_NONE;
    }
}

GLuint integer(GLenum query)
{
    GLint value = 0;
    if (query != GL_NONE)
        glGetIntegerv(query, &value);
    return static_cast<GLuint>(value);
}

void bindAtUnit(GLuint unit, GLenum target, GLuint name)
{
    const GLuint active = integer(GL_ACTIVE_TEXTURE);
    glActiveTexture(unit);
    glBindTexture(target, name);
    glActiveTexture(active);
}

} // namespace

Texture::Texture(unsigned int target, int internalFormat, int width, int height, int depth,
                 QObject *parent)
    : QObject(parent), _group(ShareGroup::current()), _target(target),
      _internalFormat(internalFormat), _width(width), _height(height), _depth(depth)
{
    if (_group)
        glGenTextures(1, &_id);
    else
        qWarning("Texture: made while no OpenGL context is current");
}

Texture::~Texture()
{
    if (_id != 0)
        _group->destroyTexture(_id);
}

void Texture::setReadOnly()
{
    _readOnly = true;
}

bool Texture::isUsable() const
{
    return _id != 0 && _group->isCurrent();
}

bool Texture::checkUsable(const char *operation) const
{
    if (isUsable())
        return true;
    qWarning("Texture::%s: the texture's OpenGL context is not current", operation);
    return false;
}

void Texture::bind()
{
    if (checkUsable("bind"))
        glBindTexture(_target, _id);
}

void Texture::bindToUnit(unsigned int unit)
{
    if (checkUsable("bindToUnit"))
        bindAtUnit(GL_TEXTURE0 + unit, _target, _id);
}

void Texture::release()
{
    if (checkUsable("release"))
        glBindTexture(_target, 0);
}

Bindable::Binding Texture::binding() const
{
    if (!ShareGroup::current())
        return {0, 0};
    return {integer(GL_ACTIVE_TEXTURE), integer(bindingQueryOf(_target))};
}

// The scope may have switched to another unit: what was bound goes back to where it was.
void Texture::restore(const Binding &previous)
{
    if (ShareGroup::current() && previous.unit != 0)
        bindAtUnit(previous.unit, _target, glIsTexture(previous.name) ? previous.name : 0);
}

} // namespace Halvard::Orv
