#include "PictureFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtGui/QImage>
#include <QtGui/QImageWriter>

namespace Halvard::Orv::Viewer {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("PictureFile", text);
}

bool isOpaque(const QImage &picture)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.constScanLine(y)[4 * x + 3] != 255) // of RGBA8888
                return false;
        }
    }
    return true;
}

} // namespace

QString writePicture(const QImage &picture, const QString &path)
{
    const QByteArray format = QFileInfo(path).suffix().toLower().toLatin1();
    if (!QImageWriter::supportedImageFormats().contains(format))
        return tr("'%1' is not saved: its suffix is not that of an image format. Use .png.")
            .arg(path);
    QSaveFile file(path);
    QString reason;
    if (file.open(QIODevice::WriteOnly)) {
        QImageWriter writer(&file, format);
        const QImage image = picture.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
        const bool isWritten =
            writer.write(isOpaque(image) ? image.convertToFormat(QImage::Format_RGB32) : image);
        if (isWritten && file.commit())
            return {};
        reason = isWritten ? file.errorString() : writer.errorString();
        file.cancelWriting();
    } else {
        reason = file.errorString();
    }
    return tr("'%1' is not saved: %2. Choose another folder or name.").arg(path, reason);
}

} // namespace Halvard::Orv::Viewer
