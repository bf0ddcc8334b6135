/// \file
/// A framebuffer to draw pictures into without a window.
#pragma once

#include <QtCore/QSize>

#include <memory>

class QImage;
class QString;

namespace Halvard::Orv::Render {

/// A multisampled colour and depth buffer.
class OffscreenTarget
{
public:
    /// \param size in pixels, both above 0.
    /// \param samples per pixel; the driver's largest number when that is smaller.
    /// \param error receives a sentence when the result is null; may be null.
    /// \return null when the driver cannot, for want of memory for example.
    ///
    /// Needs an OpenGL context current, as does everything else here.
    static std::unique_ptr<OffscreenTarget> create(const QSize &size, int samples,
                                                   QString *error = nullptr);
    ~OffscreenTarget();
    OffscreenTarget(const OffscreenTarget &) = delete;
    OffscreenTarget &operator=(const OffscreenTarget &) = delete;

    /// The longest side that the current context can draw.
    static int maximumSide();

    /// What is drawn from now on goes here, to all of it.
    void bind();

    /// The picture, top row first, colours multiplied by their alpha. Null when
    /// there is no memory for it. Leaves no framebuffer bound.
    QImage read() const;

private:
    explicit OffscreenTarget(const QSize &size);
    bool allocate(int samples);

    QSize _size;
    unsigned _framebuffers[2] = {};  // drawn into, resolved
    unsigned _renderbuffers[3] = {}; // colour, depth, resolved colour
};

} // namespace Halvard::Orv::Render
