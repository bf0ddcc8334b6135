#include "Materials/ImageCost.h"

#include <QtCore/QByteArray>
#include <QtCore/QtEndian>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Halvard::Orv {

namespace {

/// Progressive JPEGs have about ten scans; a scan of a few bytes takes as long as the image
/// has pixels.
constexpr int MostScans = 100;
constexpr qint64 MostScannedPixels = qint64(1) << 32;

/// libpng unpacks up to 8 MB from each, however small it is.
constexpr int MostCompressedTexts = 16;
/// Each takes some time, and needs 12 bytes. An image cut into pieces of 8 KB has fewer.
constexpr int MostChunks = 1 << 20;

/// A side that an icon's directory gives as 0.
constexpr int LargestIcon = 256;

constexpr char PNGSignature[] = "\x89PNG\r\n\x1a\n";
constexpr int PNGSignatureSize = sizeof PNGSignature - 1;

/// The bytes at a place; fewer where the file ends.
QByteArray bytesAt(QIODevice &device, qint64 position, int count)
{
    return device.seek(position) ? device.read(count) : QByteArray();
}

/// Bytes of a device from its start, in large pieces.
class ByteReader
{
public:
    explicit ByteReader(QIODevice &device) : _device(device) { _device.seek(0); }

    /// The next byte; -1 at the end.
    int next()
    {
        if (_at == _bytes.size() && !refill())
            return -1;
        return static_cast<uchar>(_bytes.at(_at++));
    }

    /// The next two bytes as a number; less than zero at the end.
    int nextTwo()
    {
        const int high = next();
        const int low = next();
        return low < 0 ? -1 : high * 256 + low;
    }

    /// Passes over what comes before the next byte of that value.
    /// \return whether there is one.
    bool find(char byte)
    {
        while (_at < _bytes.size() || refill()) {
            const int found = _bytes.indexOf(byte, _at);
            _at = found < 0 ? _bytes.size() : found;
            if (found >= 0)
                return true;
        }
        return false;
    }

    void skip(int count)
    {
        const int here = std::min(count, _bytes.size() - _at);
        _at += here;
        if (count > here)
            _device.skip(count - here);
    }

private:
    bool refill()
    {
        constexpr int PieceSize = 64 * 1024;
        _bytes = _device.read(PieceSize);
        _at = 0;
        return !_bytes.isEmpty();
    }

    QIODevice &_device;
    QByteArray _bytes;
    int _at = 0;
};

/// Whether the segment behind a marker of a JPEG says how large the image is.
bool isFrame(int marker)
{
    constexpr int HuffmanTables = 0xc4;
    constexpr int Extensions = 0xc8;
    constexpr int ArithmeticTables = 0xcc;
    return marker >= 0xc0 && marker <= 0xcf && marker != HuffmanTables && marker != Extensions &&
           marker != ArithmeticTables;
}

/// Counts the scans of a JPEG, up to the first beyond the limit. Segments say how long they are;
/// what a scan is made of ends at a marker that is neither an escaped byte nor a restart.
bool hasTooManyScans(QIODevice &device)
{
    constexpr int Temporary = 0x01;
    constexpr int FirstRestart = 0xd0;
    constexpr int Start = 0xd8; // follows the last restart
    constexpr int End = 0xd9;
    constexpr int StartOfScan = 0xda;
    qint64 pixels = 1;
    int scans = 0;
    ByteReader reader(device);
    while (reader.find('\xff')) {
        int marker = 0xff;
        while (marker == 0xff)
            marker = reader.next();
        if (marker < 0 || marker == End)
            return false;
        if (marker <= Temporary || (marker >= FirstRestart && marker <= Start))
            continue;
        if (marker == StartOfScan && (++scans > MostScans || scans * pixels > MostScannedPixels))
            return true;
        int left = reader.nextTwo() - 2;
        if (isFrame(marker)) {
            reader.next(); // bits a sample
            const qint64 height = reader.nextTwo();
            pixels = std::max(pixels, height * reader.nextTwo());
            left -= 5;
        }
        reader.skip(std::max(left, 0));
    }
    return false;
}

/// What makes a PNG, which begins at `start`, take much for anything but its pixels; null where
/// there is nothing.
const char *excessOfPNG(QIODevice &device, qint64 start)
{
    const char *const tooMuch = "has more compressed text, or more chunks, than an image needs";
    int texts = 0;
    qint64 position = start + PNGSignatureSize;
    for (int chunks = 0; chunks < MostChunks; ++chunks) {
        const QByteArray head = bytesAt(device, position, 8);
        if (head.size() < 8 || head.endsWith("IEND"))
            return nullptr;
        if ((head.endsWith("zTXt") || head.endsWith("iTXt") || head.endsWith("iCCP")) &&
            ++texts > MostCompressedTexts)
            return tooMuch;
        position += 12 + qint64(qFromBigEndian<quint32>(head.constData()));
        // Pixels are read in pieces; for anything else libpng has memory ready before it reads.
        if (position > device.size() && !head.endsWith("IDAT"))
            return "ends before its data do";
    }
    return tooMuch;
}

/// Whether what an entry of an icon's directory points to is larger than the entry says.
bool isLargerThanItsEntry(QIODevice &device, const uchar *entry)
{
    const int width = entry[0] == 0 ? LargestIcon : entry[0];
    const int height = entry[1] == 0 ? LargestIcon : entry[1];
    const qint64 start = qFromLittleEndian<quint32>(entry + 12);
    const QByteArray head = bytesAt(device, start, 24);
    if (head.size() < 24)
        return false;
    if (head.startsWith(PNGSignature))
        return qFromBigEndian<quint32>(head.constData() + 16) > quint32(width) ||
               qFromBigEndian<quint32>(head.constData() + 20) > quint32(height) ||
               excessOfPNG(device, start) != nullptr;
    // A bitmap, twice as high as the picture: its mask lies below.
    return std::abs(qint64(qFromLittleEndian<qint32>(head.constData() + 4))) > width ||
           std::abs(qint64(qFromLittleEndian<qint32>(head.constData() + 8))) > 2 * height;
}

bool hasLargerEntries(QIODevice &device)
{
    constexpr int HeadSize = 6;
    constexpr int EntrySize = 16;
    const QByteArray head = bytesAt(device, 0, HeadSize);
    const int count = qFromLittleEndian<quint16>(head.constData() + 4);
    const QByteArray entries = bytesAt(device, HeadSize, count * EntrySize);
    for (int at = 0; at + EntrySize <= entries.size(); at += EntrySize) {
        if (isLargerThanItsEntry(device, reinterpret_cast<const uchar *>(entries.constData()) + at))
            return true;
    }
    return false;
}

const char *excessOfKind(QIODevice &device)
{
    const QByteArray head = bytesAt(device, 0, PNGSignatureSize);
    if (head.startsWith("\xff\xd8") && hasTooManyScans(device))
        return "has more scans than an image of its size needs";
    if (head.startsWith(PNGSignature))
        return excessOfPNG(device, 0);
    const bool isIcon = head.size() >= 6 && (std::memcmp(head.constData(), "\0\0\1\0", 4) == 0 ||
                                             std::memcmp(head.constData(), "\0\0\2\0", 4) == 0);
    if (isIcon && hasLargerEntries(device))
        return "holds a larger image than it says";
    return nullptr;
}

} // namespace

const char *excessOf(QIODevice &device)
{
    const char *const excess = excessOfKind(device);
    device.seek(0);
    return excess;
}

} // namespace Halvard::Orv
