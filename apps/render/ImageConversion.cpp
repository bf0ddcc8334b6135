#include "ImageConversion.h"

#include <algorithm>
#include <cstring>

namespace Halvard::Orv::Render {

QImage convertedOnThisThread(const QImage &image, QImage::Format format)
{
    // From here on Qt makes several pieces; a single one, or a single row, it converts at once.
    constexpr int SharedBytes = 2 * 65536;
    if (image.format() == format || image.sizeInBytes() < SharedBytes)
        return image.convertToFormat(format);
    QImage result(image.size(), format);
    const int rows = std::max((SharedBytes - 1) / image.bytesPerLine(), 1);
    for (int y = 0; y < result.height(); y += rows) {
        const int height = std::min(rows, image.height() - y);
        const QImage strip = image.copy(0, y, image.width(), height).convertToFormat(format);
        if (strip.isNull())
            return strip;
        std::memcpy(result.scanLine(y), strip.constBits(), size_t(strip.sizeInBytes()));
    }
    return result;
}

} // namespace Halvard::Orv::Render
