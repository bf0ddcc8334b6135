#include "Scanning/LineDecoding.h"

#include <QtCore/QByteArray>
#include <QtCore/QTextCodec>

#include <algorithm>
#include <array>

namespace Halvard::Orv {

namespace {

constexpr int MibUTF8 = 106;

/// The single-byte supersets of ASCII among the IANA's MIB numbers.
constexpr int SingleByteMibs[] = {
    3,                                                       // US-ASCII
    4,    5,    6,    7,    8,    9,    10,   11,   12,  13, // ISO 8859-1 to -10
    109,  110,  111,  112,                                   // ISO 8859-13 to -16
    2084, 2088,                                              // KOI8-R, KOI8-U
    2250, 2251, 2252, 2253, 2254, 2255, 2256, 2257, 2258     // windows-1250 to -1258
};

bool decodesLineByLine(const QTextCodec &codec)
{
    return codec.mibEnum() == MibUTF8 ||
           std::find(std::begin(SingleByteMibs), std::end(SingleByteMibs), codec.mibEnum()) !=
               std::end(SingleByteMibs);
}

} // namespace

bool LineDecoder::start(const char *bytes, size_t count)
{
    const auto head =
        QByteArray::fromRawData(bytes, static_cast<int>(std::min<size_t>(count, HeadBytes)));
    const QTextCodec *const marked = QTextCodec::codecForUtfText(head, nullptr);
    _codec = marked ? marked : QTextCodec::codecForLocale();
    _markBytes = marked ? 3 : 0; // of UTF-8; a file marked as anything else is not read here
    return _codec && decodesLineByLine(*_codec);
}

bool LineDecoder::decode(const char *begin, const char *end, qint64 offset, QString &text) const
{
    // The same pieces as QTextStream's: a broken sequence gives one replacement
    // character where it is cut, and one for each byte elsewhere. A sequence that
    // the end of the file breaks off stays in the state, as it does there.
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    qint64 beforeBorder = PieceBytes - offset % PieceBytes;
    const bool touchesBorder =
        (offset > 0 && offset % PieceBytes == 0) || beforeBorder < end - begin;
    text.clear();
    while (begin < end) {
        const auto count = std::min<qint64>(end - begin, beforeBorder);
        text += _codec->toUnicode(begin, static_cast<int>(count), &state);
        begin += count;
        beforeBorder = PieceBytes;
    }
    text.remove(QLatin1Char('\r'));
    text.chop(text.endsWith(QLatin1Char('\n')) ? 1 : 0);
    // At the begin of a later piece the codec takes U+FEFF for a byte-order mark, if
    // all that it has decoded so far was ASCII.
    return _isStreamed || !(touchesBorder && text.contains(QChar(QChar::ByteOrderMark)));
}

} // namespace Halvard::Orv
