/// \file
/// An OpenGL context without a window.
#pragma once

#include <OrvGL/OrvGLExport.h>

#include <QtCore/QString>

#include <memory>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

/// An OpenGL 4.3+ core context without a window, made through EGL on a GPU or a software driver. It
/// needs no display server.
///
///     QString error;
///     const auto context = HeadlessContext::create(&error);
///     if (!context || !context->makeCurrent())
///         return fail(error);
///
/// It has no default framebuffer to draw into: render into a framebuffer object.
///
/// Any number may exist, one after another, side by side, and on different threads; each is current
/// on one thread at a time.
class ORVGL_EXPORT HeadlessContext
{
public:
    /// Makes a context: on the first graphics device that can, else on Mesa's surfaceless platform
    /// where there is one, else on a device in software, else on the default display; always with
    /// the highest version offered.
    ///
    /// What is current on the calling thread stays current; the new context is not. Fails while a
    /// context that is not of EGL is current there.
    /// \param error may be null. Receives, on failure, a sentence that says what was tried, what
    ///     each way failed with, and what to install; empty on success.
    /// \param shareWith may be null. A context that shall share buffers, textures and programs with
    ///     the new one.
    /// \return null on failure. Neither a missing library nor a missing driver ends the process.
    static std::unique_ptr<HeadlessContext> create(QString *error = nullptr,
                                                   const HeadlessContext *shareWith = nullptr);

    /// Destroys the context, which must not be current on another thread. Where it is current on
    /// this one, none is afterwards. Objects made in it may be destroyed before or after. Not to be
    /// left to the end of the process: a driver may unload itself before static objects go.
    ~HeadlessContext();
    HeadlessContext(const HeadlessContext &) = delete;
    HeadlessContext &operator=(const HeadlessContext &) = delete;

    /// Makes the context current on the calling thread.
    /// \return false, after a warning, when EGL refuses: it is current on another thread, or a
    ///     context not of EGL is current on this one.
    bool makeCurrent();

    /// Makes no context current on the calling thread where this one is; else does nothing.
    void doneCurrent();

    /// For people to read: how it was made, the OpenGL version and the renderer.
    QString description() const;

private:
    struct Private;
    explicit HeadlessContext(std::unique_ptr<Private> d);
    static std::unique_ptr<Private> open(void *display, const Private *shareWith, QString *failure);

    std::unique_ptr<Private> _d;
};

/// @}

} // namespace Halvard::Orv
