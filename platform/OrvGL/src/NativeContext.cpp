#include "NativeContext.h"

#include <atomic>
#include <initializer_list>

#include <dlfcn.h>

namespace Halvard::Orv {

namespace {

using GetCurrentContext = void *(*)();

GetCurrentContext findLoaded(std::initializer_list<const char *> libraries, const char *function)
{
    for (const char *library : libraries) {
        // The handle is kept on purpose: the function must stay where it was found.
        void *const handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
        if (!handle)
            continue;
        if (void *const found = dlsym(handle, function))
            return reinterpret_cast<GetCurrentContext>(found);
        dlclose(handle);
    }
    return nullptr;
}

void *currentEGL()
{
    // Looked for until found: the library may be loaded at any time.
    static std::atomic<GetCurrentContext> get{nullptr};
    if (!get)
        get = findLoaded({"libEGL.so.1"}, "eglGetCurrentContext");
    const GetCurrentContext found = get;
    return found ? found() : nullptr;
}

void *currentGLX()
{
    static std::atomic<GetCurrentContext> get{nullptr};
    if (!get)
        get = findLoaded({"libGLX.so.0", "libGL.so.1"}, "glXGetCurrentContext");
    const GetCurrentContext found = get;
    return found ? found() : nullptr;
}

} // namespace

NativeContext NativeContext::current()
{
    if (void *const handle = currentEGL())
        return {EGL, handle};
    return {GLX, currentGLX()};
}

} // namespace Halvard::Orv
