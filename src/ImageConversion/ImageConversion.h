/// \file
/// Image formats, converted without Qt's threads.
///
/// libOrvModel and the command line both need this, and applications use nothing that a library
/// hides: the source is compiled into each of them.
#pragma once

#include <QtGui/QImage>

namespace Halvard::Orv {

/// The pixels of QImage::convertToFormat(), made on the calling thread alone. Qt shares an image
/// of 128 KB or more among threads of its own, and waits without end where none can be started.
///
/// \param format of 32 bits or more per pixel, or grey: for others with less, Qt's result depends
///        on what lies beside a pixel.
/// \return null where memory ends, and of a null image. Metadata are not copied.
QImage convertedOnThisThread(const QImage &image, QImage::Format format);

/// Whether Qt would share the conversion of so many bytes.
bool isConvertedByThreads(qint64 bytes);

/// Whether the system starts a thread now: it starts one, for a moment.
bool canStartThread();

} // namespace Halvard::Orv
