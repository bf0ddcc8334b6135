// Any bytes as an image file, through what stands before and behind the decoders: without OpenGL.
#include "support/Fuzzing.h"

#include <OrvModel/TexturePreparing.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <sys/mman.h>
#include <unistd.h>

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

/// A file in memory alone: fast, and no name in the file system.
class MemoryFile
{
public:
    MemoryFile(const std::uint8_t *data, std::size_t size) : _descriptor(::memfd_create("image", 0))
    {
        require(_descriptor >= 0 && ::write(_descriptor, data, size) == static_cast<ssize_t>(size),
                "no file in memory");
    }
    ~MemoryFile() { ::close(_descriptor); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(_descriptor); }

private:
    int _descriptor;
};

void checkImage(const PreparedTexture &texture, const PrepareTextureOptions &options)
{
    const QImage &image = texture.image;
    require(texture.trouble == PreparedTexture::Trouble::None, "an image with trouble");
    require(texture.reason.isEmpty(), "an image with a reason against it");
    require(image.width() > 0 && image.height() > 0, "an image without pixels");
    require(image.width() <= options.mostOnASide && image.height() <= options.mostOnASide &&
                qint64(image.width()) * image.height() <= options.mostPixels,
            "an image beyond the limits");
    require(!texture.claimedSize.isValid() || texture.claimedSize == image.size(),
            "an image of another size than it claims");
    require(!options.convertsTo32Bits || image.depth() == 32, "an image that was not converted");
    // What an upload would read.
    unsigned sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const line = image.constScanLine(y);
        for (int x = 0; x < image.bytesPerLine(); ++x)
            sum += line[x];
    }
    volatile unsigned kept = sum;
    static_cast<void>(kept);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // The decoders have much to say of broken images.
    static const QtMessageHandler Before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    static_cast<void>(Before);

    const unsigned choice = choiceOf(asText(data, size));
    PrepareTextureOptions options;
    options.mostOnASide = choice & 1 ? 512 : 4096;
    options.mostPixels = choice & 2 ? 1 << 12 : 1 << 20;
    options.convertsTo32Bits = choice & 4;
    const MemoryFile file(data, size);
    const PreparedTexture texture = prepareTexture(file.path(), options);
    if (texture.isNull()) {
        require(texture.trouble != PreparedTexture::Trouble::None, "no image, and no trouble");
        require(!texture.reason.isEmpty(), "no image, and no reason");
        require(texture.trouble != PreparedTexture::Trouble::Missing &&
                    texture.trouble != PreparedTexture::Trouble::NotAFile &&
                    texture.trouble != PreparedTexture::Trouble::Unreadable,
                "the file is not found");
    } else {
        checkImage(texture, options);
    }
    return 0;
}
