#include "ForeignContext.h"

#include <gtest/gtest.h>

using namespace Halvard::Orv;

namespace OrvTest {

namespace {

EGLDisplay openDisplay(const EGLLibrary &egl)
{
    if (egl.hasSurfacelessPlatform)
        return egl.getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    EGLDeviceEXT device = nullptr;
    EGLint count = 0;
    if (egl.hasDevicePlatform && egl.queryDevices(1, &device, &count) && count == 1)
        return egl.getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
    return EGL_NO_DISPLAY;
}

} // namespace

std::unique_ptr<ForeignContext> ForeignContext::make(Kind kind)
{
    std::unique_ptr<ForeignContext> made(new ForeignContext);
    const EGLLibrary &egl = *made->_egl;
    EXPECT_TRUE(egl.error.isNull()) << egl.error.toStdString();
    if (!egl.error.isNull())
        return nullptr;
    const bool es = kind == Kind::OpenGLES;
    made->_api = es ? EGL_OPENGL_ES_API : EGL_OPENGL_API;
    made->_display = openDisplay(egl);
    egl.initialize(made->_display, nullptr, nullptr);
    egl.bindAPI(made->_api);
    const EGLint configWanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                   es ? EGL_OPENGL_ES3_BIT : EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    egl.chooseConfig(made->_display, configWanted, &config, 1, &count);
    const EGLint esWanted[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
    const EGLint glWanted[] = {EGL_CONTEXT_MAJOR_VERSION, 4, EGL_CONTEXT_MINOR_VERSION, 3,
                               EGL_NONE};
    made->_context =
        egl.createContext(made->_display, config, EGL_NO_CONTEXT, es ? esWanted : glWanted);
    EXPECT_NE(made->_context, EGL_NO_CONTEXT) << egl.failure("eglCreateContext").toStdString();
    return made->_context == EGL_NO_CONTEXT ? nullptr : std::move(made);
}

ForeignContext::~ForeignContext()
{
    if (_context == EGL_NO_CONTEXT)
        return;
    doneCurrent();
    _egl->destroyContext(_display, _context);
}

bool ForeignContext::makeCurrent()
{
    _egl->bindAPI(_api);
    return _egl->makeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, _context);
}

void ForeignContext::doneCurrent()
{
    if (_egl->getCurrentContext() == _context)
        _egl->makeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

} // namespace OrvTest
