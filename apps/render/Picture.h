/// \file
/// A picture of a model, in one call.
#pragma once

#include "Camera.h"
#include "Renderer.h"

#include <QtCore/QtGlobal>

class QImage;
class QSize;
class QString;

namespace Halvard::Orv::Render {

/// Of pictures. Beyond, the buffers alone take gigabytes.
constexpr int LargestSide = 16384;
constexpr qint64 LargestArea = 100'000'000;

/// The error where there is no memory.
QString noMemoryFor(const QSize &picture);

/// Draws the model off-screen, framed and anti-aliased.
///
/// \param size in pixels, both above 0.
/// \param error receives a sentence when the result is null; may be null.
/// \return null when the driver cannot draw it, or there is no memory for it: `error` is then
///         noMemoryFor(size).
///
/// Needs the model's OpenGL context current; leaves no framebuffer bound.
QImage renderPicture(const GPUModel &model, const QSize &size, const ViewAngles &angles,
                     const RenderOptions &options, QString *error = nullptr,
                     const TextureSettings &textures = {});

/// The same of what a renderer draws anyway, from a camera made for the picture's sides.
QImage renderPicture(Renderer &renderer, const QSize &size, const Camera &camera,
                     const RenderOptions &options, QString *error = nullptr);

} // namespace Halvard::Orv::Render
