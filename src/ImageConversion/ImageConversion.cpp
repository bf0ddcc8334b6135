#include "ImageConversion.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <thread>

namespace Halvard::Orv {

namespace {

/// From here on Qt makes several pieces; a single one it converts at once.
constexpr int SharedBytes = 2 * 65536;

} // namespace

bool isConvertedByThreads(qint64 bytes)
{
    return bytes >= SharedBytes;
}

QImage convertedOnThisThread(const QImage &image, QImage::Format format)
{
    if (image.format() == format || !isConvertedByThreads(image.sizeInBytes()))
        return image.convertToFormat(format);
    QImage result(image.size(), format);
    if (result.isNull())
        return result;
    // A single row is never shared, however long it is.
    const int rows = std::max((SharedBytes - 1) / image.bytesPerLine(), 1);
    for (int y = 0; y < image.height(); y += rows) {
        const int height = std::min(rows, image.height() - y);
        const QImage strip = image.copy(0, y, image.width(), height).convertToFormat(format);
        if (strip.isNull())
            return strip;
        std::memcpy(result.scanLine(y), strip.constBits(), size_t(strip.sizeInBytes()));
    }
    return result;
}

bool canStartThread()
{
    try {
        std::thread([] {}).join();
        return true;
    } catch (const std::system_error &) {
        return false;
    }
}

} // namespace Halvard::Orv
