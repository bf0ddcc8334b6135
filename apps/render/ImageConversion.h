/// \file
/// Image formats, converted without Qt's threads.
#pragma once

#include <QtGui/QImage>

namespace Halvard::Orv::Render {

/// The pixels of QImage::convertToFormat(), made on the calling thread alone. Qt shares an image
/// of 128 KB or more among threads of its own, and waits without end where none can be started.
///
/// \param format one without a colour table in which no pixel depends on its neighbours: of 32
///        bits, or grey.
/// \return null where memory ends.
QImage convertedOnThisThread(const QImage &image, QImage::Format format);

} // namespace Halvard::Orv::Render
