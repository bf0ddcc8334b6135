#include <OrvGL/VertexArrayObject.h>

#include <OrvGL/BufferObject.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QByteArray>
#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv {

namespace {

constexpr int MostComponents = 4; // of one attribute location

// How a shader takes the values of an attribute.
enum class Reading
{
    AsFloats,
    AsIntegers,
    AsDoubles,
    Never
};

// `type` is that of the attribute in the shader. A matrix takes several locations, which one buffer
// with at most four values per vertex cannot fill.
Reading readingOf(GLenum type)
{
    switch (type) {
    case GL_FLOAT:
    case GL_FLOAT_VEC2:
    case GL_FLOAT_VEC3:
    case GL_FLOAT_VEC4:
        return Reading::AsFloats;
    case GL_INT:
    case GL_INT_VEC2:
    case GL_INT_VEC3:
    case GL_INT_VEC4:
    case GL_UNSIGNED_INT:
    case GL_UNSIGNED_INT_VEC2:
    case GL_UNSIGNED_INT_VEC3:
    case GL_UNSIGNED_INT_VEC4:
        return Reading::AsIntegers;
    case GL_DOUBLE:
    case GL_DOUBLE_VEC2:
    case GL_DOUBLE_VEC3:
    case GL_DOUBLE_VEC4:
        return Reading::AsDoubles;
    default:
        return Reading::Never;
    }
}

bool isIntegerValue(GLenum type)
{
    return type == GL_BYTE || type == GL_UNSIGNED_BYTE || type == GL_SHORT ||
           type == GL_UNSIGNED_SHORT || type == GL_INT || type == GL_UNSIGNED_INT;
}

bool isFloatValue(GLenum type)
{
    return type == GL_FLOAT || type == GL_HALF_FLOAT || type == GL_DOUBLE;
}

// Points the location at the buffer bound to GL_ARRAY_BUFFER; false where the shader cannot take
// such values.
bool connect(GLuint location, Reading reading, const VertexArrayObject::Attribute &attribute)
{
    const GLenum type = attribute.type;
    if (reading == Reading::AsFloats && (isFloatValue(type) || isIntegerValue(type)))
        glVertexAttribPointer(location, attribute.components, type, GL_FALSE, 0, nullptr);
    else if (reading == Reading::AsIntegers && isIntegerValue(type))
        glVertexAttribIPointer(location, attribute.components, type, 0, nullptr);
    else if (reading == Reading::AsDoubles && type == GL_DOUBLE)
        glVertexAttribLPointer(location, attribute.components, type, 0, nullptr);
    else
        return false;
    return true;
}

bool hasDrawableSize(int components)
{
    return components >= 1 && components <= MostComponents;
}

struct ShaderAttribute
{
    QByteArray name;
    GLenum type;
    GLint location; // -1 for what OpenGL itself feeds, such as gl_VertexID
};

QVector<ShaderAttribute> activeAttributesOf(GLuint program)
{
    GLint count = 0;
    GLint room = 0; // for the longest name and its NUL
    glGetProgramiv(program, GL_ACTIVE_ATTRIBUTES, &count);
    glGetProgramiv(program, GL_ACTIVE_ATTRIBUTE_MAX_LENGTH, &room);
    QVector<ShaderAttribute> attributes;
    for (GLint i = 0; i < count; ++i) {
        QByteArray name(std::max(room, 1), '\0');
        GLsizei length = 0;
        GLint arraySize = 0;
        GLenum type = GL_NONE;
        glGetActiveAttrib(program, static_cast<GLuint>(i), name.size(), &length, &arraySize, &type,
                          name.data());
        name.truncate(length);
        attributes.append({name, type, glGetAttribLocation(program, name.constData())});
    }
    return attributes;
}

// The attribute to feed to a shader's of that name; null when none can.
const VertexArrayObject::Attribute *
findDrawable(const QVector<VertexArrayObject::Attribute> &attributes, const QString &name)
{
    for (const VertexArrayObject::Attribute &attribute : attributes) {
        if (attribute.name == name) {
            const bool drawable = hasDrawableSize(attribute.components) && attribute.buffer &&
                                  attribute.buffer->byteCount() > 0 && attribute.buffer->isUsable();
            return drawable ? &attribute : nullptr;
        }
    }
    return nullptr;
}

} // namespace

VertexArrayObject::VertexArrayObject() = default;

VertexArrayObject::~VertexArrayObject()
{
    drop();
}

void VertexArrayObject::registerBO(const QString &name, const QSharedPointer<BufferObject> &buffer,
                                   int components, unsigned int type)
{
    if (!hasDrawableSize(components))
        qWarning("VertexArrayObject: attribute \"%s\" has %d values per vertex, cannot be drawn",
                 qUtf8Printable(name), components);
    const Attribute attribute = {name, buffer, components, type};
    for (Attribute &known : _attributes) {
        if (known.name == name) {
            known = attribute;
            return;
        }
    }
    _attributes.append(attribute);
}

// Locations belong to the program, and a program's name says nothing about what it was linked from
// since: the connections are made anew at every bind.
bool VertexArrayObject::bind(unsigned int program)
{
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context || context->version() < 30) {
        qWarning("VertexArrayObject::bind: no OpenGL context with vertex arrays is current");
        return false;
    }
    if (_context != context)
        makeFor(context);
    glBindVertexArray(_id);
    for (const unsigned int location : qAsConst(_enabledLocations))
        glDisableVertexAttribArray(location);
    _enabledLocations.clear();
    for (const ShaderAttribute &shader : activeAttributesOf(program)) {
        const Attribute *attribute = findDrawable(_attributes, QString::fromUtf8(shader.name));
        if (!attribute || shader.location < 0)
            continue;
        const auto location = static_cast<GLuint>(shader.location);
        glBindBuffer(GL_ARRAY_BUFFER, attribute->buffer->id());
        if (connect(location, readingOf(shader.type), *attribute)) {
            glEnableVertexAttribArray(location);
            _enabledLocations.append(location);
        }
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return true;
}

void VertexArrayObject::release()
{
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (context && context->version() >= 30)
        glBindVertexArray(0);
}

void VertexArrayObject::makeFor(const QSharedPointer<OpenGLDeviceContext> &context)
{
    drop();
    _context = context;
    glGenVertexArrays(1, &_id);
}

void VertexArrayObject::drop()
{
    if (_id != 0)
        _context->destroyVertexArray(_id);
    _id = 0;
    _enabledLocations.clear();
}

} // namespace Halvard::Orv
