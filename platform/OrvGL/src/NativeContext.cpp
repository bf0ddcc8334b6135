#include "NativeContext.h"

// For the types and enumerants only: see EGLLibrary.h.
#include <epoxy/egl.h>

#include <QtCore/QtDebug>

#include <atomic>
#include <initializer_list>
#include <type_traits>

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

/// A library of OpenGL functions under the names it may have, and the package that has it.
struct FunctionLibrary
{
    const char *names[2];
    const char *package;
    std::atomic<bool> isLoaded;
    std::atomic<bool> isMissed;

    bool load()
    {
        if (isLoaded)
            return true;
        for (const char *name : names) {
            // Kept: it is about to be used.
            if (name && dlopen(name, RTLD_LAZY))
                return isLoaded = true;
        }
        if (!isMissed.exchange(true))
            qWarning("OpenGL cannot be called: %s cannot be loaded; install %s", names[0], package);
        return false;
    }
};

FunctionLibrary desktopLibrary = {{"libOpenGL.so.0", "libGL.so.1"}, "libopengl0", {false}, {false}};
FunctionLibrary esLibrary = {{"libGLESv2.so.2", nullptr}, "libgles2", {false}, {false}};
FunctionLibrary firstESLibrary = {{"libGLESv1_CM.so.1", nullptr}, "libgles1", {false}, {false}};

/// What libEGL says of the contexts it made.
struct EGLQueries
{
    PFNEGLGETCURRENTDISPLAYPROC getCurrentDisplay = nullptr;
    PFNEGLQUERYCONTEXTPROC queryContext = nullptr;

    EGLQueries()
    {
        void *const egl = dlopen("libEGL.so.1", RTLD_LAZY | RTLD_NOLOAD);
        if (!egl)
            return;
        const auto load = [egl](auto &function, const char *name) {
            function = reinterpret_cast<std::decay_t<decltype(function)>>(dlsym(egl, name));
        };
        load(getCurrentDisplay, "eglGetCurrentDisplay");
        load(queryContext, "eglQueryContext");
    }
};

/// The library that has the functions of the EGL context that is current.
FunctionLibrary &libraryOfEGLContext(EGLContext context)
{
    static const EGLQueries egl; // there is a context, so libEGL is loaded
    if (!egl.getCurrentDisplay || !egl.queryContext)
        return desktopLibrary;
    const EGLDisplay display = egl.getCurrentDisplay();
    EGLint api = EGL_OPENGL_API;
    EGLint version = 0;
    egl.queryContext(display, context, EGL_CONTEXT_CLIENT_TYPE, &api);
    egl.queryContext(display, context, EGL_CONTEXT_CLIENT_VERSION, &version);
    if (api != EGL_OPENGL_ES_API)
        return desktopLibrary;
    return version >= 2 ? esLibrary : firstESLibrary;
}

} // namespace

bool NativeContext::canBeCalled() const
{
    return (api == EGL ? libraryOfEGLContext(handle) : desktopLibrary).load();
}

NativeContext NativeContext::current()
{
    if (void *const handle = currentEGL())
        return {EGL, handle};
    return {GLX, currentGLX()};
}

} // namespace Halvard::Orv
