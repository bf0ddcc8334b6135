/// \file
/// What to type for the picture that a window shows.
#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Halvard::Orv::Render {
struct RenderOptions;
} // namespace Halvard::Orv::Render

namespace Halvard::Orv::Viewer {

class CameraControl;

/// The arguments of `orv` that draw the same picture, to the bit with the same driver. What is marked
/// or highlighted is not in it.
QStringList renderArguments(const QString &model, const QString &picture, const QSize &size,
                            const CameraControl &camera, const Render::RenderOptions &options);

/// The same as a line for a shell, from "orv" on. Names with control characters, and those whose bytes
/// are not UTF-8, come as $'...', which bash, zsh and ksh read.
QString renderCommandLine(const QStringList &arguments);

} // namespace Halvard::Orv::Viewer
