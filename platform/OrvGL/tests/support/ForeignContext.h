/// \file
/// OpenGL contexts that somebody else made: the library under test only meets them.
#pragma once

#include "EGLLibrary.h"

#include <memory>

namespace OrvTest {

/// A plain EGL context on Mesa's surfaceless platform, or else on the first device.
class ForeignContext
{
public:
    enum class Kind
    {
        OpenGL,
        OpenGLES
    };

    /// A new context, not current; null, with a failure recorded, where none can be made.
    static std::unique_ptr<ForeignContext> make(Kind kind = Kind::OpenGL);
    ~ForeignContext();
    ForeignContext(const ForeignContext &) = delete;
    ForeignContext &operator=(const ForeignContext &) = delete;

    bool makeCurrent();
    void doneCurrent();
    EGLContext handle() const { return _context; }

private:
    ForeignContext() = default;

    std::shared_ptr<const Halvard::Orv::EGLLibrary> _egl = Halvard::Orv::EGLLibrary::instance();
    EGLenum _api = EGL_NONE;
    EGLDisplay _display = EGL_NO_DISPLAY;
    EGLContext _context = EGL_NO_CONTEXT;
};

} // namespace OrvTest
