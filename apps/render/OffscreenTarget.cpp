#include "OffscreenTarget.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QString>
#include <QtGui/QImage>

#include <algorithm>

namespace Halvard::Orv::Render {

namespace {

GLint limit(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

/// Errors of earlier calls must not be taken for ours. There are few flags, but a lost
/// context answers with an error for ever.
void forgetErrors()
{
    constexpr int MostFlags = 8;
    for (int i = 0; i < MostFlags && glGetError() != GL_NO_ERROR; ++i) {
    }
}

} // namespace

OffscreenTarget::OffscreenTarget(const QSize &size) : _size(size) {}

OffscreenTarget::~OffscreenTarget()
{
    glDeleteFramebuffers(2, _framebuffers);
    glDeleteRenderbuffers(3, _renderbuffers);
}

int OffscreenTarget::maximumSide()
{
    GLint viewport[2] = {};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    return std::min({limit(GL_MAX_RENDERBUFFER_SIZE), viewport[0], viewport[1]});
}

std::unique_ptr<OffscreenTarget> OffscreenTarget::create(const QSize &size, int samples,
                                                         QString *error)
{
    std::unique_ptr<OffscreenTarget> target(new OffscreenTarget(size));
    forgetErrors();
    if (std::max(size.width(), size.height()) <= maximumSide() && target->allocate(samples))
        return target;
    forgetErrors();
    if (error)
        *error = QStringLiteral("The OpenGL driver cannot draw a picture of %1x%2 pixels.")
                     .arg(size.width())
                     .arg(size.height());
    return nullptr;
}

bool OffscreenTarget::allocate(int samples)
{
    const auto storage = [this](unsigned renderbuffer, int sampleCount, GLenum format) {
        glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, sampleCount, format, _size.width(),
                                         _size.height());
    };
    const int sampleCount = std::clamp(samples, 0, limit(GL_MAX_SAMPLES));
    glGenRenderbuffers(3, _renderbuffers);
    storage(_renderbuffers[0], sampleCount, GL_RGBA8);
    storage(_renderbuffers[1], sampleCount, GL_DEPTH_COMPONENT24);
    storage(_renderbuffers[2], 0, GL_RGBA8);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    if (glGetError() != GL_NO_ERROR)
        return false;

    const auto attach = [](GLenum point, unsigned renderbuffer) {
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, renderbuffer);
    };
    glGenFramebuffers(2, _framebuffers);
    glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[1]);
    attach(GL_COLOR_ATTACHMENT0, _renderbuffers[2]);
    const bool resolvedIsComplete =
        glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[0]);
    attach(GL_COLOR_ATTACHMENT0, _renderbuffers[0]);
    attach(GL_DEPTH_ATTACHMENT, _renderbuffers[1]);
    const bool drawnIsComplete =
        glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return resolvedIsComplete && drawnIsComplete && glGetError() == GL_NO_ERROR;
}

void OffscreenTarget::bind()
{
    glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[0]);
    glViewport(0, 0, _size.width(), _size.height());
}

QImage OffscreenTarget::read() const
{
    QImage image(_size, QImage::Format_RGBA8888_Premultiplied);
    if (image.isNull())
        return image;

    // Samples are not read directly: OpenGL resolves them while it copies.
    glBindFramebuffer(GL_READ_FRAMEBUFFER, _framebuffers[0]);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, _framebuffers[1]);
    glBlitFramebuffer(0, 0, _size.width(), _size.height(), 0, 0, _size.width(), _size.height(),
                      GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[1]);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, _size.width(), _size.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    // OpenGL's first row is the lowest.
    return image.mirrored(false, true);
}

} // namespace Halvard::Orv::Render
