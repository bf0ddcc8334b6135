#include <OrvGL/BufferObject.h>

#include "GLErrors.h"
#include "ShareGroup.h"

#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QtDebug>

#include <climits>
#include <limits>

namespace Halvard::Orv {

namespace {

// The query for what is bound to `target`; GL_NONE for an unknown target.
GLenum bindingQueryOf(GLenum target)
{
    switch (target) {
    case GL_ARRAY_BUFFER:
        return GL_ARRAY_BUFFER_BINDING;
    case GL_ELEMENT_ARRAY_BUFFER:
        return GL_ELEMENT_ARRAY_BUFFER_BINDING;
    case GL_DRAW_INDIRECT_BUFFER:
        return GL_DRAW_INDIRECT_BUFFER_BINDING;
    case GL_SHADER_STORAGE_BUFFER:
        return GL_SHADER_STORAGE_BUFFER_BINDING;
    case GL_UNIFORM_BUFFER:
        return GL_UNIFORM_BUFFER_BINDING;
    case GL_COPY_READ_BUFFER:
        return GL_COPY_READ_BUFFER_BINDING;
    case GL_COPY_WRITE_BUFFER:
        return GL_COPY_WRITE_BUFFER_BINDING;
    case GL_PIXEL_PACK_BUFFER:
        return GL_PIXEL_PACK_BUFFER_BINDING;
    case GL_PIXEL_UNPACK_BUFFER:
        return GL_PIXEL_UNPACK_BUFFER_BINDING;
    case GL_TRANSFORM_FEEDBACK_BUFFER:
        return GL_TRANSFORM_FEEDBACK_BUFFER_BINDING;
    case GL_ATOMIC_COUNTER_BUFFER:
        return GL_ATOMIC_COUNTER_BUFFER_BINDING;
    case GL_DISPATCH_INDIRECT_BUFFER:
        return GL_DISPATCH_INDIRECT_BUFFER_BINDING;
    case GL_TEXTURE_BUFFER:
        return GL_TEXTURE_BUFFER; // the target is its own query
    case GL_QUERY_BUFFER:
        return GL_QUERY_BUFFER_BINDING;
    default:
        return GL_NONE;
    }
}

GLuint boundTo(GLenum target)
{
    const GLenum query = bindingQueryOf(target);
    GLint name = 0;
    if (query != GL_NONE)
        glGetIntegerv(query, &name);
    return static_cast<GLuint>(name);
}

// Binds a buffer for a transfer, to a target that no drawing uses: binding an element buffer to its
// own would change whatever vertex array happens to be bound.
class TransferBinding
{
public:
    TransferBinding(GLenum target, GLuint name) : _target(target), _before(boundTo(target))
    {
        glBindBuffer(_target, name);
    }
    ~TransferBinding() { glBindBuffer(_target, _before); }
    TransferBinding(const TransferBinding &) = delete;
    TransferBinding &operator=(const TransferBinding &) = delete;

private:
    GLenum _target;
    GLuint _before;
};

} // namespace

BufferObject::BufferObject(const QSharedPointer<ShareGroup> &group)
    : _group(group), _target(GL_ARRAY_BUFFER)
{
    if (_group->isCurrent())
        glGenBuffers(1, &_id);
    else
        qWarning("BufferObject: made while its OpenGL context is not current");
}

BufferObject::~BufferObject()
{
    if (_id != 0)
        _group->destroyBuffer(_id);
}

void BufferObject::setTarget(unsigned int target)
{
    _target = target;
}

bool BufferObject::isUsable() const
{
    return _id != 0 && _group->isCurrent();
}

bool BufferObject::checkUsable(const char *operation) const
{
    if (isUsable())
        return true;
    qWarning("BufferObject::%s: the buffer's OpenGL context is not current", operation);
    return false;
}

void BufferObject::bind()
{
    if (checkUsable("bind"))
        glBindBuffer(_target, _id);
}

void BufferObject::release()
{
    if (checkUsable("release"))
        glBindBuffer(_target, 0);
}

Bindable::Binding BufferObject::binding() const
{
    return {0, ShareGroup::current() ? boundTo(_target) : 0};
}

void BufferObject::restore(const Binding &previous)
{
    if (ShareGroup::current())
        glBindBuffer(_target, glIsBuffer(previous.name) ? previous.name : 0);
}

void BufferObject::uploadGLushortData(const unsigned short *data, int count, unsigned int usage)
{
    uploadArbitraryData(data, count, usage, sizeof(*data));
}

void BufferObject::uploadGLuintData(const unsigned int *data, int count, unsigned int usage)
{
    uploadArbitraryData(data, count, usage, sizeof(*data));
}

void BufferObject::uploadArbitraryData(const void *data, int count, unsigned int usage,
                                       unsigned long elementSize)
{
    // Until the upload has succeeded, what the buffer holds is not known.
    _byteCount = 0;
    _uploadFailed = true;
    if (!checkUsable("upload"))
        return;
    if (count < 0)
        qWarning("BufferObject::upload: %d elements taken as none", count);
    const auto elements = static_cast<unsigned long>(count > 0 ? count : 0);
    constexpr auto MostBytes = static_cast<unsigned long>(std::numeric_limits<GLsizeiptr>::max());
    if (elements > 0 && elementSize > MostBytes / elements) {
        qWarning("BufferObject::upload: %lu elements of %lu bytes are more than OpenGL can count",
                 elements, elementSize);
        return;
    }
    const auto size = static_cast<GLsizeiptr>(elements * elementSize);
    reportGLErrors(QStringLiteral("was raised before an upload"));
    const TransferBinding bound(GL_COPY_WRITE_BUFFER, _id);
    glBufferData(GL_COPY_WRITE_BUFFER, size, size > 0 ? data : nullptr, usage);
    if (reportGLErrors(QStringLiteral("while uploading %1 bytes").arg(size)))
        return;
    _byteCount = size;
    _uploadFailed = false;
}

QByteArray BufferObject::download() const
{
    if (!checkUsable("download"))
        return {};
    if (_byteCount > INT_MAX) {
        qWarning("BufferObject::download: %lld bytes are too many for one array", _byteCount);
        return {};
    }
    if (OpenGLDeviceContext::current()->version() == 0) {
        qWarning("BufferObject::download: OpenGL ES cannot read buffers back");
        return {};
    }
    QByteArray bytes(static_cast<int>(_byteCount), '\0');
    if (bytes.isEmpty())
        return bytes;
    const TransferBinding bound(GL_COPY_READ_BUFFER, _id);
    glGetBufferSubData(GL_COPY_READ_BUFFER, 0, bytes.size(), bytes.data());
    if (reportGLErrors(QStringLiteral("while downloading %1 bytes").arg(bytes.size())))
        return {};
    return bytes;
}

} // namespace Halvard::Orv
