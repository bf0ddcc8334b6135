#include "ShareGroup.h"

#include "OpenGLDeviceContextPrivate.h"

#include <atomic>

namespace Halvard::Orv {

namespace {

quint64 nextNumber()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

} // namespace

QSharedPointer<ShareGroup> ShareGroup::current()
{
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    return context ? context->_d->group : QSharedPointer<ShareGroup>();
}

ShareGroup::ShareGroup(bool canMark)
    : _number(nextNumber()), _mark(canMark ? ContextMark::ofShareGroup(_number) : ContextMark())
{}

// Queued first in any case: finding out which context is current also empties its queues.
void ShareGroup::destroyBuffer(GLuint name)
{
    _buffers.add(name);
    current();
}

void ShareGroup::destroyTexture(GLuint name)
{
    _textures.add(name);
    current();
}

void ShareGroup::deletePending()
{
    const std::vector<GLuint> buffers = _buffers.take();
    if (!buffers.empty())
        glDeleteBuffers(static_cast<GLsizei>(buffers.size()), buffers.data());
    const std::vector<GLuint> textures = _textures.take();
    if (!textures.empty())
        glDeleteTextures(static_cast<GLsizei>(textures.size()), textures.data());
}

} // namespace Halvard::Orv
