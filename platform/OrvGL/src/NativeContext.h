/// \file
/// The context that is current on a thread, whoever made it.
#pragma once

namespace Halvard::Orv {

/// The window system's name for an OpenGL context.
struct NativeContext
{
    enum Api
    {
        EGL,
        GLX
    };

    Api api = EGL;
    void *handle = nullptr; ///< EGLContext or GLXContext; null when no context is current.

    /// What is current on the calling thread. Loads no library: one that is not loaded has made no
    /// context. (libepoxy's own inquiry ends the process where there is neither EGL nor GLX.)
    static NativeContext current();

    /// Whether the library through which libepoxy calls the OpenGL of this context, which is
    /// current, can be loaded; libepoxy ends the process where it cannot. Warns once for each
    /// library that is missing.
    bool canBeCalled() const;
};

inline bool operator==(const NativeContext &a, const NativeContext &b)
{
    return a.api == b.api && a.handle == b.handle;
}

} // namespace Halvard::Orv
