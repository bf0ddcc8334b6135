#include "EGLLibrary.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <array>
#include <initializer_list>
#include <type_traits>

#include <dlfcn.h>

namespace Halvard::Orv {

namespace {

const char *nameOf(EGLint error)
{
    // EGL numbers its errors from EGL_SUCCESS on.
    static constexpr std::array<const char *, 15> names = {
        "EGL_SUCCESS",       "EGL_NOT_INITIALIZED",     "EGL_BAD_ACCESS",
        "EGL_BAD_ALLOC",     "EGL_BAD_ATTRIBUTE",       "EGL_BAD_CONFIG",
        "EGL_BAD_CONTEXT",   "EGL_BAD_CURRENT_SURFACE", "EGL_BAD_DISPLAY",
        "EGL_BAD_MATCH",     "EGL_BAD_NATIVE_PIXMAP",   "EGL_BAD_NATIVE_WINDOW",
        "EGL_BAD_PARAMETER", "EGL_BAD_SURFACE",         "EGL_CONTEXT_LOST"};
    const auto index = static_cast<size_t>(error - EGL_SUCCESS);
    return index < names.size() ? names[index] : "unknown error";
}

// libepoxy opens one of these at the first OpenGL call and ends the process when there is none.
bool canLoadOpenGL()
{
    for (const char *library : {"libOpenGL.so.0", "libGL.so.1"}) {
        if (dlopen(library, RTLD_LAZY)) // kept: it is about to be used
            return true;
    }
    return false;
}

// Whether `extensions`, separated by blanks, has `name`; null has none.
bool contains(const char *extensions, const char *name)
{
    return extensions && QByteArray(extensions).split(' ').contains(name);
}

} // namespace

std::shared_ptr<const EGLLibrary> EGLLibrary::instance()
{
    static const std::shared_ptr<const EGLLibrary> library(new EGLLibrary);
    return library;
}

EGLLibrary::EGLLibrary()
{
    void *const library = dlopen("libEGL.so.1", RTLD_LAZY);
    if (!library) {
        error = QStringLiteral("libEGL.so.1 cannot be loaded (%1)")
                    .arg(QString::fromLocal8Bit(dlerror()));
        return;
    }
    if (!canLoadOpenGL()) {
        error = QStringLiteral("neither libOpenGL.so.0 nor libGL.so.1 can be loaded");
        return;
    }
    loadFunctions(library);
    if (error.isNull())
        loadExtensions();
}

void EGLLibrary::loadFunctions(void *library)
{
    const auto load = [this, library](auto &function, const char *name) {
        function = reinterpret_cast<std::decay_t<decltype(function)>>(dlsym(library, name));
        if (!function && error.isNull())
            error = QStringLiteral("libEGL.so.1 has no %1").arg(QLatin1String(name));
    };
    load(getProcAddress, "eglGetProcAddress");
    load(queryString, "eglQueryString");
    load(getDisplay, "eglGetDisplay");
    load(initialize, "eglInitialize");
    load(bindAPI, "eglBindAPI");
    load(queryAPI, "eglQueryAPI");
    load(chooseConfig, "eglChooseConfig");
    load(createContext, "eglCreateContext");
    load(destroyContext, "eglDestroyContext");
    load(createPbufferSurface, "eglCreatePbufferSurface");
    load(destroySurface, "eglDestroySurface");
    load(makeCurrent, "eglMakeCurrent");
    load(getCurrentContext, "eglGetCurrentContext");
    load(getCurrentDisplay, "eglGetCurrentDisplay");
    load(getCurrentSurface, "eglGetCurrentSurface");
    load(getError, "eglGetError");
}

// eglGetProcAddress may give a pointer for any name: the extension strings decide.
void EGLLibrary::loadExtensions()
{
    const auto load = [this](auto &function, const char *name) {
        function = reinterpret_cast<std::decay_t<decltype(function)>>(getProcAddress(name));
        return function != nullptr;
    };
    if (!hasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_base") ||
        !load(getPlatformDisplay, "eglGetPlatformDisplayEXT"))
        return;
    hasSurfacelessPlatform = hasExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless");
    const bool hasDevices = hasExtension(EGL_NO_DISPLAY, "EGL_EXT_device_base");
    const bool enumerates =
        hasDevices || hasExtension(EGL_NO_DISPLAY, "EGL_EXT_device_enumeration");
    hasDevicePlatform = hasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_device") && enumerates &&
                        load(queryDevices, "eglQueryDevicesEXT");
    if (hasDevices || hasExtension(EGL_NO_DISPLAY, "EGL_EXT_device_query"))
        load(queryDeviceString, "eglQueryDeviceStringEXT");
}

bool EGLLibrary::hasExtension(EGLDisplay display, const char *name) const
{
    // Null for an uninitialised display, and for a library too old to have extensions of its own.
    return contains(queryString(display, EGL_EXTENSIONS), name);
}

bool EGLLibrary::isHardware(EGLDeviceEXT device) const
{
    const char *const all = queryDeviceString ? queryDeviceString(device, EGL_EXTENSIONS) : nullptr;
    return all && !contains(all, "EGL_MESA_device_software");
}

QString EGLLibrary::failure(const char *function) const
{
    return QStringLiteral("%1 failed (%2)")
        .arg(QLatin1String(function), QLatin1String(nameOf(getError())));
}

} // namespace Halvard::Orv
