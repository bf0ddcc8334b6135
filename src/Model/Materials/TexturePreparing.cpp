#include <OrvModel/TexturePreparing.h>

#include "Files/FileOpening.h"
#include "Lanes/FloatingPointState.h"
#include "Materials/ImageCost.h"

#include <ImageConversion.h>

#include <QtCore/QFile>
#include <QtGui/QImageReader>

#include <new>
#include <utility>

namespace Halvard::Orv {

namespace {

using Trouble = PreparedTexture::Trouble;

/// A file that is opened by number forgets its name, by whose suffix an image reader begins.
class ImageFile : public QFile
{
public:
    explicit ImageFile(const QString &name) : QFile(name), _name(name) {}
    QString fileName() const override { return _name; }

private:
    QString _name;
};

/// Leaves a prepared texture without an image.
bool refuse(PreparedTexture &prepared, Trouble trouble, const QString &reason)
{
    prepared.image = QImage();
    prepared.trouble = trouble;
    prepared.reason = reason;
    return false;
}

bool open(ImageFile &file, PreparedTexture &prepared)
{
    switch (openWithoutWaiting(file, QIODevice::ReadOnly)) {
    case FileTrouble::None:
        break;
    case FileTrouble::Missing:
        return refuse(prepared, Trouble::Missing, QStringLiteral("does not exist"));
    case FileTrouble::Directory:
        return refuse(prepared, Trouble::Missing, QStringLiteral("is a directory"));
    case FileTrouble::NotRegular:
        return refuse(prepared, Trouble::NotAFile,
                      QStringLiteral("is a pipe, a socket or a device"));
    case FileTrouble::Busy:
        return refuse(prepared, Trouble::Unreadable, QStringLiteral("is held by another program"));
    case FileTrouble::Unreadable:
        return refuse(prepared, Trouble::Unreadable,
                      QStringLiteral("cannot be opened (%1)").arg(file.errorString()));
    }
    if (isMadeUpByTheKernel(file))
        return refuse(prepared, Trouble::NotAFile,
                      QStringLiteral("is no file that anybody stored"));
    return true;
}

bool isWithin(const QSize &size, const PrepareTextureOptions &options)
{
    return size.width() <= options.mostOnASide && size.height() <= options.mostOnASide &&
           qint64(size.width()) * size.height() <= options.mostPixels;
}

bool refuseSize(PreparedTexture &prepared, const QSize &size, const PrepareTextureOptions &options)
{
    return refuse(
        prepared, Trouble::TooLarge,
        QStringLiteral("has %1 x %2 pixels, more than the %3 on a side, or the %4 in all, "
                       "that a texture can have")
            .arg(size.width())
            .arg(size.height())
            .arg(options.mostOnASide)
            .arg(options.mostPixels));
}

bool refuseForMemory(PreparedTexture &prepared)
{
    return refuse(prepared, Trouble::NoMemory,
                  QStringLiteral("is larger than there is memory for"));
}

/// Qt's reader of icons is the only one that converts on threads of Qt's pool, and waits for them.
bool isReadByThreads(const QByteArray &format, const QSize &size)
{
    return format == "ico" && isConvertedByThreads(qint64(size.width()) * size.height() * 4);
}

/// Why a reader failed, which says only that it did.
bool hasNoMemoryFor(const QSize &size)
{
    return size.isValid() && QImage(size, QImage::Format_ARGB32).isNull();
}

bool decode(ImageFile &file, const PrepareTextureOptions &options, PreparedTexture &prepared)
{
    if (const char *excess = excessOf(file))
        return refuse(prepared, Trouble::Hostile, QLatin1String(excess));
    QImageReader reader(&file);
    const QByteArray format = reader.format(); // the reader of icons knows it until it reads
    const QSize claimed = reader.size();
    prepared.claimedSize = claimed;
    if (claimed.isValid() && !isWithin(claimed, options))
        return refuseSize(prepared, claimed, options);
    if (isReadByThreads(format, claimed) && !canStartThread())
        return refuse(prepared, Trouble::NoMemory,
                      QStringLiteral("is an icon, which takes a thread to decode, and none can be "
                                     "started"));
    prepared.image = reader.read();
    const QSize decoded = prepared.image.size();
    if (prepared.image.isNull() && hasNoMemoryFor(claimed))
        return refuseForMemory(prepared);
    if (prepared.image.isNull())
        return refuse(prepared, Trouble::NoImage, QStringLiteral("is no image that can be read"));
    if (!isWithin(decoded, options)) // of a format that tells no size beforehand
        return refuseSize(prepared, decoded, options);
    if (claimed.isValid() && claimed != decoded)
        return refuse(prepared, Trouble::Misleading,
                      QStringLiteral("says that it has %1 x %2 pixels, and has %3 x %4")
                          .arg(claimed.width())
                          .arg(claimed.height())
                          .arg(decoded.width())
                          .arg(decoded.height()));
    return true;
}

/// Turns the image upside down, and converts it where that is asked for; in place, where Qt can.
bool finish(const PrepareTextureOptions &options, PreparedTexture &prepared)
{
    QImage image = std::exchange(prepared.image, QImage());
    const bool isPlain =
        image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32;
    if (options.convertsTo32Bits && !isPlain)
        image = convertedOnThisThread(image, QImage::Format_ARGB32);
    image = std::move(image).mirrored(false, true);
    if (image.isNull())
        return refuseForMemory(prepared);
    prepared.image = std::move(image);
    return true;
}

} // namespace

PreparedTexture prepareTexture(const QString &fileName, const PrepareTextureOptions &options)
{
    const FloatingPointState state;
    PreparedTexture prepared;
    prepared.fileName = fileName;
    try {
        ImageFile file(fileName);
        if (open(file, prepared) && decode(file, options, prepared) && finish(options, prepared))
            prepared.trouble = Trouble::None;
    } catch (const std::bad_alloc &) {
        refuseForMemory(prepared);
    }
    return prepared;
}

} // namespace Halvard::Orv
