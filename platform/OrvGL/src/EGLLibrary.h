/// \file
/// The functions of EGL, where the system has them.
#pragma once

// For the types and enumerants only. libepoxy's own EGL functions end the process where the library
// or a function is missing; here that has to be an answer.
#include <epoxy/egl.h>

#include <QtCore/QString>

#include <memory>

namespace Halvard::Orv {

/// libEGL, loaded when first asked for and then kept. All functions may be called from any thread.
struct EGLLibrary
{
    /// The library of the process; look at `error` before calling anything. Who will need it when
    /// objects in static storage are destroyed keeps the pointer.
    static std::shared_ptr<const EGLLibrary> instance();

    /// Null when everything below is there, else what is missing.
    QString error;

    PFNEGLGETPROCADDRESSPROC getProcAddress = nullptr;
    PFNEGLQUERYSTRINGPROC queryString = nullptr;
    PFNEGLGETDISPLAYPROC getDisplay = nullptr;
    PFNEGLINITIALIZEPROC initialize = nullptr;
    PFNEGLBINDAPIPROC bindAPI = nullptr;
    PFNEGLQUERYAPIPROC queryAPI = nullptr;
    PFNEGLCHOOSECONFIGPROC chooseConfig = nullptr;
    PFNEGLCREATECONTEXTPROC createContext = nullptr;
    PFNEGLDESTROYCONTEXTPROC destroyContext = nullptr;
    PFNEGLCREATEPBUFFERSURFACEPROC createPbufferSurface = nullptr;
    PFNEGLDESTROYSURFACEPROC destroySurface = nullptr;
    PFNEGLMAKECURRENTPROC makeCurrent = nullptr;
    PFNEGLGETCURRENTCONTEXTPROC getCurrentContext = nullptr;
    PFNEGLGETCURRENTDISPLAYPROC getCurrentDisplay = nullptr;
    PFNEGLGETCURRENTSURFACEPROC getCurrentSurface = nullptr;
    PFNEGLGETERRORPROC getError = nullptr;

    // Extensions of the library, null where it lacks them.
    PFNEGLGETPLATFORMDISPLAYEXTPROC getPlatformDisplay = nullptr;
    PFNEGLQUERYDEVICESEXTPROC queryDevices = nullptr;
    PFNEGLQUERYDEVICESTRINGEXTPROC queryDeviceString = nullptr;
    bool hasSurfacelessPlatform = false; ///< Mesa's, for getPlatformDisplay.
    bool hasDevicePlatform = false;      ///< For getPlatformDisplay, on devices of queryDevices.

    /// Whether `display` (EGL_NO_DISPLAY: the library itself) lists the extension.
    bool hasExtension(EGLDisplay display, const char *name) const;

    /// Whether a device of queryDevices() is one that draws in hardware, as far as it says.
    bool isHardware(EGLDeviceEXT device) const;

    /// "eglInitialize failed (EGL_NOT_INITIALIZED)", from the thread's last error.
    QString failure(const char *function) const;

private:
    EGLLibrary();
    void loadFunctions(void *library);
    void loadExtensions();
};

} // namespace Halvard::Orv
