// Image formats, converted on one thread.
#include "ImageConversion.h"

#include "support/ImageFiles.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"
#include "support/WithoutThreads.h"

#include <OrvModel/TexturePreparing.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace Halvard::Orv;
using namespace OrvTest;

/// Any bits, which mean something in every format; with a colour table where it has one.
QImage noise(const QSize &size, QImage::Format format)
{
    QImage image(size, format);
    std::mt19937 random(static_cast<unsigned>(format));
    for (int y = 0; y < image.height(); ++y) {
        uchar *const row = image.scanLine(y);
        for (int i = 0; i < image.bytesPerLine(); ++i)
            row[i] = static_cast<uchar>(random());
    }
    const int colours = image.depth() == 1 ? 2 : 256;
    if (format == QImage::Format_Mono || format == QImage::Format_MonoLSB ||
        format == QImage::Format_Indexed8) {
        for (int i = 0; i < colours; ++i)
            image.setColor(i, static_cast<QRgb>(random()));
    }
    return image;
}

/// The rows of 300 and 301 pixels are no multiple of four bytes in every format; those of 40,000
/// are longer than a piece; the smallest is none of several pieces.
const QSize Sizes[] = {{300, 700}, {301, 450}, {40000, 5}, {7, 5}};

TEST(ImageConversion, GivesThePixelsOfQt)
{
    for (int from = QImage::Format_Mono; from < QImage::NImageFormats; ++from) {
        for (const QImage::Format to : {QImage::Format_RGB32, QImage::Format_ARGB32,
                                        QImage::Format_RGBA64, QImage::Format_Grayscale8}) {
            for (const QSize &size : Sizes) {
                SCOPED_TRACE(testing::Message() << "from " << from << " to " << int(to) << ", "
                                                << size.width() << " x " << size.height());
                const QImage image = noise(size, QImage::Format(from));
                ASSERT_FALSE(image.isNull());
                const QImage expected = image.convertToFormat(to);
                ASSERT_EQ(int(expected.format()), int(to));
                EXPECT_TRUE(convertedOnThisThread(image, to) == expected);
            }
        }
    }
}

TEST(ImageConversion, ANullImageStaysOne)
{
    EXPECT_TRUE(convertedOnThisThread(QImage(), QImage::Format_ARGB32).isNull());
}

TEST(ImageConversion, AnImageWithoutColourTableIsConvertedAsByQt)
{
    QImage image = noise({300, 700}, QImage::Format_Indexed8);
    image.setColorTable({});
    EXPECT_TRUE(convertedOnThisThread(image, QImage::Format_ARGB32) ==
                image.convertToFormat(QImage::Format_ARGB32));
}

/// Last, since Qt's pool does not recover.
TEST(ImageConversionWithoutThreads, TakesNoThread)
{
    const QImage image = noise({300, 700}, QImage::Format_RGBA8888);
    const QImage expected = image.convertToFormat(QImage::Format_ARGB32);
    EXPECT_TRUE(canStartThread());
    const WithoutThreads none;
    EXPECT_FALSE(canStartThread());
    EXPECT_TRUE(convertedOnThisThread(image, QImage::Format_ARGB32) == expected);
}

/// A bitmap in an icon, which Qt's reader converts.
TEST(ImageConversionWithoutThreads, TexturesAreDecodedButForLargeIcons)
{
    const TemporaryModel files;
    PrepareTextureOptions options;
    options.convertsTo32Bits = true;
    const auto write = [&files](const char *format, const QSize &size) {
        const QString name = QStringLiteral("%1.%2").arg(size.width()).arg(QLatin1String(format));
        return files.write(name, encoded(noise(size, QImage::Format_ARGB32), format));
    };
    QStringList images{write("ico", {128, 128})};
    for (const char *format : {"png", "jpg", "bmp", "ppm", "pgm", "pbm", "xbm", "xpm"})
        images += write(format, {300, 700});
    const QString largeIcon = write("ico", {256, 256});
    EXPECT_EQ(prepareTexture(largeIcon, options).reason, QString());

    const WithoutThreads none;
    for (const QString &image : images)
        EXPECT_EQ(prepareTexture(image, options).reason, QString()) << image.toStdString();
    const PreparedTexture icon = prepareTexture(largeIcon, options);
    EXPECT_EQ(int(icon.trouble), int(PreparedTexture::Trouble::NoMemory));
    EXPECT_EQ(icon.reason, QStringLiteral("is an icon, which takes a thread to decode, and none "
                                          "can be started"));
}

} // namespace
