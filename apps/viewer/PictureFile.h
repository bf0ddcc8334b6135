/// \file
/// Writes a picture.
#pragma once

#include <QtCore/QString>

class QImage;

namespace Halvard::Orv::Viewer {

/// Writes an image file, whole or not at all; its suffix says the format. A picture without
/// transparent pixels has no alpha channel there.
/// \return empty, or a sentence that says why it is not written.
QString writePicture(const QImage &picture, const QString &path);

} // namespace Halvard::Orv::Viewer
