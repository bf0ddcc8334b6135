/// \file
/// A picture of a model, in one call.
#pragma once

#include "Camera.h"
#include "Renderer.h"

#include <QtCore/QString>
#include <QtCore/QtGlobal>

class QImage;
class QSize;

namespace Halvard::Orv::Render {

/// Of pictures. Beyond, the buffers alone take gigabytes.
constexpr int LargestSide = 16384;
constexpr qint64 LargestArea = 100'000'000;

/// Why there is no picture.
struct PictureError
{
    QString text;             ///< A sentence.
    bool lacksMemory = false; ///< Whether memory is what is missing.
};

/// The error where there is no memory.
PictureError noMemoryFor(const QSize &picture);

/// Draws the model off-screen, framed and anti-aliased.
///
/// \param size in pixels, both above 0.
/// \param error assigned when the result is null.
/// \return null when the driver cannot draw it, or there is no memory for it.
///
/// Needs the model's OpenGL context current; leaves no framebuffer bound.
QImage renderPicture(const GPUModel &model, const QSize &size, const ViewAngles &angles,
                     const RenderOptions &options, PictureError &error,
                     const TextureSettings &textures = {});

/// The same of what a renderer draws anyway, from a camera made for the picture's sides.
QImage renderPicture(Renderer &renderer, const QSize &size, const Camera &camera,
                     const RenderOptions &options, PictureError &error);

} // namespace Halvard::Orv::Render
