// Images that claim more pixels than anybody has memory for.
#include "support/GLTest.h"
#include "support/ImageFiles.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvModel/TextureLoading.h>

#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <QtGui/QImage>

#include <array>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

QImage pixel(QImage::Format format)
{
    QImage image(1, 1, format);
    image.fill(Qt::black);
    return image;
}

/// The check sum of a chunk of a PNG, bit by bit.
quint32 checkSum(const QByteArray &chunk)
{
    quint32 sum = 0xffffffffu;
    for (const char byte : chunk) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ (sum & 1 ? 0xedb88320u : 0);
    }
    return ~sum;
}

/// A PNG of one pixel whose header says otherwise. The header is 8 bytes of signature, the
/// length, "IHDR", width, height, and five bytes on.
QByteArray png(quint32 width, quint32 height, QImage::Format format = QImage::Format_RGB32)
{
    QByteArray file = encoded(pixel(format), "PNG");
    EXPECT_EQ(file.mid(12, 4), QByteArray("IHDR"));
    file.replace(16, 8, bigEndian(width) + bigEndian(height));
    file.replace(29, 4, bigEndian(checkSum(file.mid(12, 17))));
    return file;
}

/// Width and height stand behind 14 bytes of file header and 4 of the own size.
QByteArray bmp(quint32 width, quint32 height)
{
    QByteArray file = encoded(pixel(QImage::Format_RGB32), "BMP");
    file.replace(18, 8, littleEndian(width) + littleEndian(height));
    return file;
}

QByteArray ppm(quint32 width, quint32 height)
{
    return "P6 " + QByteArray::number(width) + ' ' + QByteArray::number(height) + " 255\nabc";
}

/// Height and width stand in the frame's header, behind its length and the precision.
QByteArray jpeg(quint16 width, quint16 height)
{
    QByteArray file = encoded(pixel(QImage::Format_RGB32), "JPG");
    const int frame = file.indexOf("\xff\xc0");
    EXPECT_GT(frame, 0);
    file.replace(frame + 5, 4, bigEndian(height) + bigEndian(width));
    return file;
}

/// Most memory that the process has had, in KiB. Not what getrusage() says, which begins
/// with the peak of whoever started the program.
long peak()
{
    QFile status(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    long kilobytes = 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            kilobytes = line.simplified().split(' ').at(1).toLong();
    }
    EXPECT_GT(kilobytes, 0);
    return kilobytes;
}

/// What the driver is made to allow on a side.
constexpr GLint Side = 32768;
PFNGLGETINTEGERVPROC driverGetInteger = nullptr;

void APIENTRY allowMore(GLenum name, GLint *value)
{
    if (name == GL_MAX_TEXTURE_SIZE)
        *value = Side;
    else
        driverGetInteger(name, value);
}

class TextureLimits : public GLTest
{
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSide);
        ASSERT_GT(maxSide, 0);
    }

    std::string refusal(const QString &path, int width, int height) const
    {
        return "'" + path.toStdString() + "' is not loaded: it has " + std::to_string(width) +
               " x " + std::to_string(height) + " pixels, more than the " +
               std::to_string(maxSide) +
               " on a side, or the 268435456 in all, that a texture can have";
    }

    void expectRefused(const QByteArray &image, int width, int height) const
    {
        const QString path = files.write(QStringLiteral("bomb"), image);
        const MessageCapture messages;
        EXPECT_FALSE(LoadTexture(path));
        EXPECT_THAT(messages.texts(QtWarningMsg), ElementsAre(refusal(path, width, height)));
    }

    GLint maxSide = 0;
    TemporaryModel files;
};

TEST_F(TextureLimits, ImagesOfBillionsOfPixelsAreNotDecoded)
{
    const long before = peak();
    const struct
    {
        const char *name;
        QByteArray image;
    } rows[] = {
        {"PNG", png(60000, 60000)},
        {"PNG of bits", png(60000, 60000, QImage::Format_Mono)},
        {"PNG of greys", png(60000, 60000, QImage::Format_Grayscale8)},
        {"JPEG", jpeg(60000, 60000)},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        expectRefused(row.image, 60000, 60000);
    }
    // The readers of these formats have limits of their own, and tell no size beyond them.
    EXPECT_FALSE(LoadTexture(files.write(QStringLiteral("ppm"), ppm(60000, 60000))));
    EXPECT_FALSE(LoadTexture(files.write(QStringLiteral("bmp"), bmp(60000, 60000))));
    EXPECT_LT(peak() - before, 50 * 1024);
}

TEST_F(TextureLimits, OneSideMayBeTooLong)
{
    expectRefused(ppm(quint32(maxSide) + 1, 1), maxSide + 1, 1);
    expectRefused(ppm(1, quint32(maxSide) + 1), 1, maxSide + 1);
}

TEST_F(TextureLimits, TheLongestSideIsStillLoaded)
{
    QImage image(maxSide, 1, QImage::Format_RGB32);
    image.fill(Qt::red);
    static std::array<Texture *, 2> textures; // they live as long as the process
    textures[0] = LoadTexture(files.write(QStringLiteral("wide"), encoded(image, "PPM")));
    EXPECT_TRUE(textures[0]);
    textures[1] = LoadTexture(files.write(
        QStringLiteral("high"), encoded(image.transformed(QTransform().rotate(90)), "PPM")));
    EXPECT_TRUE(textures[1]);
}

TEST_F(TextureLimits, DriversThatTakeLongerSidesDoNotMakeItMorePixels)
{
    driverGetInteger = epoxy_glGetIntegerv;
    epoxy_glGetIntegerv = allowMore;
    maxSide = Side;
    expectRefused(ppm(16384, 16385), 16384, 16385);
    expectRefused(png(32768, 32768), 32768, 32768);
    {
        const MessageCapture messages;
        EXPECT_FALSE(LoadTexture(files.write(QStringLiteral("cut.ppm"), "P6 32768 x")));
        EXPECT_THAT(messages.texts(QtWarningMsg), IsEmpty()) << "no size, no image";
    }
    epoxy_glGetIntegerv = driverGetInteger;
}

} // namespace
