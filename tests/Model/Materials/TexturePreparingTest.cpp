// Images that lie, and images that are built to be expensive. They are made here, byte by byte.
#include "support/GLTest.h"
#include "support/ImageFiles.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvGL/AutoBinder.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvModel/TextureLoading.h>
#include <OrvModel/TexturePreparing.h>

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtGui/QImageWriter>

#include <array>
#include <sys/stat.h>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Trouble = PreparedTexture::Trouble;

namespace {

QImage plain(int width, int height, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(width, height, format);
    image.fill(Qt::red);
    return image;
}

/// An icon of one entry that says it has `side` pixels a side, and holds `image`.
QByteArray icon(uchar side, const QByteArray &image)
{
    QByteArray file("\0\0\1\0\1\0", 6);
    file += char(side);
    file += char(side);
    file += QByteArray("\0\0\1\0\x20\0", 6);
    file += littleEndian(quint32(image.size())) + littleEndian(quint32(22));
    return file + image;
}

/// A progressive JPEG, with its last scan repeated until there are so many: that says again what
/// was said, and takes as long as any.
QByteArray jpegOfScans(int scans)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "JPG");
    writer.setProgressiveScanWrite(true);
    EXPECT_TRUE(writer.write(plain(8, 8)));
    QByteArray file = buffer.data();
    const int scan = file.lastIndexOf("\xff\xda");
    const int end = file.lastIndexOf("\xff\xd9");
    EXPECT_TRUE(scan > 0 && end > scan);
    const QByteArray body = file.mid(scan, end - scan);
    for (int count = file.count("\xff\xda"); count < scans; ++count)
        file.insert(end, body);
    EXPECT_EQ(file.count("\xff\xda"), scans);
    return file;
}

/// The same with the size that it claims: height and width stand in the frame's header, behind its
/// length and the precision.
QByteArray jpegOfScans(int scans, quint16 width, quint16 height)
{
    QByteArray file = jpegOfScans(scans);
    const int frame = file.indexOf("\xff\xc2");
    EXPECT_GT(frame, 0);
    return file.replace(frame + 5, 4, bigEndian(height) + bigEndian(width));
}

/// A PNG with chunks of one type behind its header, whose check sums nobody looks at here.
QByteArray pngOfChunks(const char *type, int count)
{
    QByteArray file = encoded(plain(4, 4), "PNG");
    constexpr int BehindTheHeader = 8 + 25;
    QByteArray chunks;
    for (int i = 0; i < count; ++i)
        chunks += bigEndian(quint32(0)) + type + bigEndian(quint32(0));
    return file.insert(BehindTheHeader, chunks);
}

class TexturePreparing : public ::testing::Test
{
protected:
    PreparedTexture prepared(const QByteArray &bytes, const PrepareTextureOptions &options = {})
    {
        return prepareTexture(files.write(QStringLiteral("image"), bytes), options);
    }

    std::string reason(const QByteArray &bytes, Trouble trouble)
    {
        const PreparedTexture texture = prepared(bytes);
        EXPECT_TRUE(texture.isNull());
        EXPECT_EQ(int(texture.trouble), int(trouble));
        return texture.reason.toStdString();
    }

    TemporaryModel files;
};

TEST_F(TexturePreparing, DecodesAndTurnsUpsideDown)
{
    QImage image = plain(2, 2);
    image.setPixelColor(0, 0, Qt::blue);
    const PreparedTexture texture = prepared(encoded(image, "PNG"));
    EXPECT_EQ(int(texture.trouble), int(Trouble::None));
    EXPECT_EQ(texture.reason, QString());
    EXPECT_EQ(texture.image, image.mirrored(false, true));
    EXPECT_EQ(texture.claimedSize, QSize(2, 2));
}

TEST_F(TexturePreparing, ConvertsOnlyWhenAskedTo)
{
    const QByteArray grey = encoded(plain(3, 3, QImage::Format_Grayscale8), "PNG");
    EXPECT_EQ(prepared(grey).image.depth(), 8);
    PrepareTextureOptions options;
    options.convertsTo32Bits = true;
    EXPECT_EQ(prepared(grey, options).image.format(), QImage::Format_ARGB32);
}

TEST_F(TexturePreparing, SaysWhatIsNoImage)
{
    EXPECT_EQ(reason("", Trouble::NoImage), "is no image that can be read");
    EXPECT_EQ(reason(encoded(plain(9, 9), "PNG").left(60), Trouble::NoImage),
              "is no image that can be read");
    const auto troubleAt = [](const QString &path) { return int(prepareTexture(path).trouble); };
    EXPECT_EQ(troubleAt(files.path(QStringLiteral("none"))), int(Trouble::Missing));
    EXPECT_EQ(troubleAt(files.directory()), int(Trouble::Missing));
    EXPECT_EQ(troubleAt(QStringLiteral("/dev/zero")), int(Trouble::NotAFile));
    EXPECT_EQ(troubleAt(QStringLiteral("/proc/self/status")), int(Trouble::NotAFile));
    const QString pipe = files.path(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(troubleAt(pipe), int(Trouble::NotAFile));
}

TEST_F(TexturePreparing, LimitsAreThoseOfTheCaller)
{
    const QByteArray image = encoded(plain(20, 10), "PNG");
    PrepareTextureOptions options;
    options.mostPixels = 200;
    options.mostOnASide = 20;
    EXPECT_FALSE(prepared(image, options).isNull());
    options.mostOnASide = 19;
    EXPECT_EQ(prepared(image, options).reason.toStdString(),
              "has 20 x 10 pixels, more than the 19 on a side, or the 200 in all, that a texture "
              "can have");
    options.mostOnASide = 20;
    options.mostPixels = 199;
    EXPECT_EQ(int(prepared(image, options).trouble), int(Trouble::TooLarge));
}

TEST_F(TexturePreparing, IconsMayHoldNothingLarger)
{
    const QByteArray png = encoded(plain(16, 16), "PNG");
    EXPECT_FALSE(prepared(icon(16, png)).isNull());
    EXPECT_FALSE(prepared(icon(0, encoded(plain(256, 256), "PNG"))).isNull());
    const char larger[] = "holds a larger image than it says";
    EXPECT_EQ(reason(icon(15, png), Trouble::Hostile), larger);
    EXPECT_EQ(reason(icon(0, encoded(plain(257, 256), "PNG")), Trouble::Hostile), larger);
    EXPECT_EQ(reason(icon(17, png), Trouble::Misleading),
              "says that it has 17 x 17 pixels, and has 16 x 16");
    // Within the icon, the bitmap has no file header of 14 bytes.
    QByteArray bitmap = encoded(plain(16, 16), "BMP").mid(14);
    bitmap.replace(4, 8, littleEndian(qint32(30000)) + littleEndian(qint32(60000)));
    EXPECT_EQ(reason(icon(0, bitmap), Trouble::Hostile), larger);
}

TEST_F(TexturePreparing, AScanForEachOfALotOfThingsIsTooMany)
{
    EXPECT_FALSE(prepared(jpegOfScans(100)).isNull());
    EXPECT_EQ(reason(jpegOfScans(101), Trouble::Hostile),
              "has more scans than an image of its size needs");
    // 16 times 2^28 pixels are not too many, 17 times are.
    PrepareTextureOptions small;
    small.mostPixels = 64;
    EXPECT_EQ(int(prepared(jpegOfScans(16, 16384, 16384), small).trouble), int(Trouble::TooLarge));
    EXPECT_EQ(int(prepared(jpegOfScans(17, 16384, 16384)).trouble), int(Trouble::Hostile));
    // What an image carries along is no part of it: here a picture in a comment.
    QByteArray file = encoded(plain(8, 8), "JPG");
    const QByteArray inner = QByteArray("\xff\xda").repeated(200);
    file.insert(2, QByteArray("\xff\xfe") + bigEndian(quint16(inner.size() + 2)) + inner);
    EXPECT_FALSE(prepared(file).isNull());
}

TEST_F(TexturePreparing, DataThatAreNotThereTakeNoMemory)
{
    // libpng has as many bytes ready as a text says that it has, before it reads the first.
    constexpr int HeaderEnd = 8 + 25; // the signature, and the chunk of the size
    for (const char *type : {"zTXt", "iTXt", "iCCP", "tEXt", "eXIf"}) {
        QByteArray file = encoded(plain(5, 3), "PNG");
        file.insert(HeaderEnd, QByteArray("\x74\x00\x00\x0f", 4) + type);
        EXPECT_EQ(reason(file, Trouble::Hostile), "ends before its data do") << type;
    }
    // Pixels that are cut off are the reader's business.
    const QByteArray whole = encoded(plain(50, 30), "PNG");
    const QByteArray cut = whole.left(whole.indexOf("IDAT") + 10);
    EXPECT_NE(int(prepared(cut).trouble), int(Trouble::Hostile));
}

TEST_F(TexturePreparing, CompressedTextsAreCounted)
{
    EXPECT_FALSE(prepared(pngOfChunks("tEXt", 500)).isNull());
    const char much[] = "has more compressed text, or more chunks, than an image needs";
    for (const char *type : {"zTXt", "iTXt", "iCCP"}) {
        EXPECT_NE(int(prepared(pngOfChunks(type, 16)).trouble), int(Trouble::Hostile)) << type;
        EXPECT_EQ(reason(pngOfChunks(type, 17), Trouble::Hostile), much) << type;
        EXPECT_EQ(reason(icon(4, pngOfChunks(type, 17)), Trouble::Hostile),
                  "holds a larger image than it says")
            << type;
    }
    EXPECT_EQ(reason(pngOfChunks("teSt", 1 << 20), Trouble::Hostile), much);
}

/// Remembers a texture, for the leak sanitizer: it lives as long as the process, longer than the
/// table in which the library finds it.
Texture *kept(Texture *texture)
{
    static std::array<Texture *, 16> known;
    static std::size_t count = 0;
    if (texture)
        known.at(count++) = texture;
    return texture;
}

class TextureUploading : public GLTest
{
protected:
    TemporaryModel files;
};

TEST_F(TextureUploading, EntersTheTableOfLoadTexture)
{
    const QString path = files.write(QStringLiteral("t.png"), encoded(plain(4, 4), "PNG"));
    Texture *const uploaded = kept(uploadTexture(prepareTexture(path)));
    ASSERT_TRUE(uploaded);
    EXPECT_EQ(LoadTexture(path), uploaded);
    EXPECT_EQ(uploadTexture(prepareTexture(path)), uploaded);
}

TEST_F(TextureUploading, MakesTexturesThatTheCallerLetsGo)
{
    const QString path = files.write(QStringLiteral("t.png"), encoded(plain(4, 4), "PNG"));
    const PreparedTexture prepared = prepareTexture(path);
    const std::unique_ptr<Texture> first = makeTexture(prepared);
    std::unique_ptr<Texture> second = makeTexture(prepared);
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->id(), second->id());
    EXPECT_TRUE(first->isReadOnly());
    const GLuint name = second->id();
    second.reset();
    EXPECT_FALSE(glIsTexture(name));
    // The table has heard of neither.
    EXPECT_NE(kept(LoadTexture(path)), first.get());

    QString reason;
    EXPECT_FALSE(makeTexture(prepareTexture(files.path(QStringLiteral("none"))), &reason));
    EXPECT_EQ(reason, QStringLiteral("does not exist"));
}

TEST_F(TextureUploading, RefusesWhatIsNotOf32Bits)
{
    const QString path = files.write(QStringLiteral("grey.png"),
                                     encoded(plain(4, 4, QImage::Format_Grayscale8), "PNG"));
    QString reason;
    EXPECT_FALSE(uploadTexture(prepareTexture(path), &reason));
    EXPECT_EQ(reason, QStringLiteral("does not decode to 32 bits per pixel"));
    EXPECT_FALSE(uploadTexture(prepareTexture(files.path(QStringLiteral("none"))), &reason));
    EXPECT_EQ(reason, QStringLiteral("does not exist"));
}

TEST_F(TextureUploading, AnImageThatIsRefusedIsSaidByLoadTexture)
{
    const QString path =
        files.write(QStringLiteral("lie.ico"), icon(1, encoded(plain(2, 2), "PNG")));
    const MessageCapture messages;
    EXPECT_FALSE(LoadTexture(path));
    EXPECT_THAT(messages.texts(QtWarningMsg),
                ElementsAre("'" + path.toStdString() +
                            "' is not loaded: it holds a larger image than it says"));
}

TEST_F(TextureUploading, AnApplicationsUnpackStateIsNeitherUsedNorChanged)
{
    QImage image = plain(3, 2);
    image.setPixelColor(2, 1, Qt::blue);
    const QString path = files.write(QStringLiteral("t.png"), encoded(image, "PNG"));
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
    glBufferData(GL_PIXEL_UNPACK_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    const GLenum modes[] = {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS,
                            GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST};
    for (const GLenum mode : modes)
        glPixelStorei(mode, 1);

    const MessageCapture messages;
    Texture *const texture = kept(LoadTexture(path));

    GLint bound = 0;
    glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &bound);
    EXPECT_EQ(GLuint(bound), buffer);
    for (const GLenum mode : modes) {
        GLint value = 0;
        glGetIntegerv(mode, &value);
        EXPECT_EQ(value, 1) << mode;
        glPixelStorei(mode, 0);
    }
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glDeleteBuffers(1, &buffer);
    EXPECT_THAT(messages.texts(QtWarningMsg), IsEmpty());
    ASSERT_TRUE(texture);
    const AutoBinder binder(texture);
    unsigned pixels[6] = {};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_INT_8_8_8_8, pixels);
    EXPECT_THAT(pixels, ElementsAre(0xff0000ffu, 0xff0000ffu, 0x0000ffffu, 0xff0000ffu, 0xff0000ffu,
                                    0xff0000ffu));
}

} // namespace
