#include <OrvGL/OpenGLDeviceContext.h>

#include "DebugOutput.h"
#include "OpenGLDeviceContextPrivate.h"
#include "ShareGroup.h"

#include <OrvGL/BufferObject.h>
#include <OrvGL/VertexArrayObject.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

namespace Halvard::Orv {

namespace {

using ContextPointer = QSharedPointer<OpenGLDeviceContext>;

// Set when the list below is destroyed. Objects in static storage may outlive it, and then find
// that no context is current.
std::atomic<bool> processIsEnding{false};

// The contexts seen so far, one per native handle. Few: searched from end to end.
struct SeenContexts
{
    std::mutex mutex;
    std::vector<ContextPointer> contexts;

    ~SeenContexts() { processIsEnding = true; }
};

SeenContexts &seenContexts()
{
    static SeenContexts seen;
    return seen;
}

quint64 nextContextNumber()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

QString driverDescription()
{
    const auto text = [](GLenum name) {
        return QString::fromUtf8(reinterpret_cast<const char *>(glGetString(name)));
    };
    return text(GL_VERSION) + QLatin1String(", ") + text(GL_RENDERER);
}

} // namespace

// Whether the current context, which has the right handle, is this one and not a later one.
bool OpenGLDeviceContext::Private::matchesCurrent() const
{
    return mark.isNull() ? description == driverDescription() : mark.isHere();
}

OpenGLDeviceContext::OpenGLDeviceContext() : _d(std::make_unique<Private>()) {}

OpenGLDeviceContext::~OpenGLDeviceContext() = default;

ContextPointer OpenGLDeviceContext::current()
{
    const NativeContext native = NativeContext::current();
    if (!native.handle || processIsEnding || !native.canBeCalled())
        return {};
    ContextPointer context = find(native);
    if (!context || !context->_d->matchesCurrent())
        context = meet(native);
    context->deletePending();
    return context;
}

ContextPointer OpenGLDeviceContext::find(const NativeContext &native)
{
    SeenContexts &seen = seenContexts();
    const std::lock_guard<std::mutex> lock(seen.mutex);
    for (const ContextPointer &context : seen.contexts) {
        if (context->_d->native == native)
            return context;
    }
    return {};
}

// No lock is held while OpenGL is called: a context is current on one thread only, so no other can
// be meeting it, and a debug message may lead an application's message handler back to current().
ContextPointer OpenGLDeviceContext::meet(const NativeContext &native)
{
    ContextPointer context(new OpenGLDeviceContext);
    Private &d = *context->_d;
    d.native = native;
    d.description = driverDescription();
    const bool desktop = epoxy_is_desktop_gl();
    d.version = desktop ? epoxy_gl_version() : 0;
    d.hasMultiDrawIndirect =
        desktop && (d.version >= 43 || epoxy_has_gl_extension("GL_ARB_multi_draw_indirect"));
    d.hasDrawParameters = desktop && epoxy_has_gl_extension("GL_ARB_shader_draw_parameters");
    const bool hasDebug =
        d.version >= 43 || (d.version >= 30 && epoxy_has_gl_extension("GL_KHR_debug"));
    if (hasDebug) {
        connectDebugOutput();
        d.mark = ContextMark::ofContext(nextContextNumber());
    }
    d.group = groupOfCurrentContext(hasDebug);

    SeenContexts &seen = seenContexts();
    const std::lock_guard<std::mutex> lock(seen.mutex);
    const auto hasSameHandle = [&native](const ContextPointer &other) {
        return other->_d->native == native;
    };
    auto &contexts = seen.contexts;
    contexts.erase(std::remove_if(contexts.begin(), contexts.end(), hasSameHandle), contexts.end());
    contexts.push_back(context);
    return context;
}

QSharedPointer<ShareGroup> OpenGLDeviceContext::groupOfCurrentContext(bool canMark)
{
    std::vector<ContextPointer> known;
    {
        SeenContexts &seen = seenContexts();
        const std::lock_guard<std::mutex> lock(seen.mutex);
        known = seen.contexts;
    }
    for (const ContextPointer &context : known) {
        if (canMark && context->_d->group->hasCurrentContext())
            return context->_d->group;
    }
    return QSharedPointer<ShareGroup>::create(canMark);
}

void OpenGLDeviceContext::forget(void *eglContext)
{
    if (processIsEnding)
        return;
    SeenContexts &seen = seenContexts();
    const std::lock_guard<std::mutex> lock(seen.mutex);
    const NativeContext native = {NativeContext::EGL, eglContext};
    const auto isGone = [&native](const ContextPointer &context) {
        return context->_d->native == native;
    };
    auto &contexts = seen.contexts;
    contexts.erase(std::remove_if(contexts.begin(), contexts.end(), isGone), contexts.end());
}

void OpenGLDeviceContext::deletePending()
{
    _d->group->deletePending();
    const std::vector<GLuint> names = _d->vertexArrays.take();
    if (!names.empty())
        glDeleteVertexArrays(static_cast<GLsizei>(names.size()), names.data());
}

// Queued first in any case: finding out which context is current also empties its queue.
void OpenGLDeviceContext::destroyVertexArray(unsigned int name)
{
    _d->vertexArrays.add(name);
    current();
}

QSharedPointer<BufferObject> OpenGLDeviceContext::createBufferObject()
{
    return QSharedPointer<BufferObject>(new BufferObject(_d->group));
}

QSharedPointer<VertexArrayObject> OpenGLDeviceContext::createVertexArrayObject()
{
    return QSharedPointer<VertexArrayObject>::create();
}

bool OpenGLDeviceContext::isCurrent() const
{
    return current().data() == this;
}

int OpenGLDeviceContext::version() const
{
    return _d->version;
}

bool OpenGLDeviceContext::hasMultiDrawIndirect() const
{
    return _d->hasMultiDrawIndirect;
}

bool OpenGLDeviceContext::hasDrawParameters() const
{
    return _d->hasDrawParameters;
}

QString OpenGLDeviceContext::description() const
{
    return _d->description;
}

} // namespace Halvard::Orv
