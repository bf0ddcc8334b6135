#include "Reading/TextLines.h"

#include <Pieces/RawReading.h>

#include <QtCore/QIODevice>
#include <QtCore/QTextCodec>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Halvard::Orv::Checking {

namespace {

constexpr int MibUTF8 = 106;

/// Whether every byte below 0x80 is its ASCII character, whatever stands around it, and every
/// other byte is one character: what makes lines of bytes lines of text.
bool isSingleByteASCII(const QTextCodec &codec)
{
    for (int byte = 0; byte < 0x80; ++byte) {
        const char text = static_cast<char>(byte);
        QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
        const QString decoded = codec.toUnicode(&text, 1, &state);
        if (decoded.size() != 1 || decoded.at(0).unicode() != byte)
            return false;
    }
    for (int byte = 0x80; byte < 0x100; ++byte) {
        const char text[] = {static_cast<char>(byte), 'a'};
        QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
        const QString decoded = codec.toUnicode(text, 2, &state);
        if (decoded.size() != 2 || decoded.at(1) != QLatin1Char('a'))
            return false;
    }
    return true;
}

/// Bytes at the end of a text in UTF-8 that begin a character without ending it: a decoder
/// waits for the rest, and drops them.
std::ptrdiff_t unfinishedBytes(const char *begin, const char *end)
{
    constexpr std::ptrdiff_t LongestBegin = 3;
    for (std::ptrdiff_t i = 1; i <= std::min(LongestBegin, end - begin); ++i) {
        const auto byte = static_cast<unsigned char>(end[-i]);
        if (byte < 0x80)
            return 0;
        if (byte >= 0xc0) {
            // Others begin nothing, and are replaced.
            const bool begins = byte >= 0xc2 && byte <= 0xf4;
            const std::ptrdiff_t length = byte < 0xe0 ? 2 : byte < 0xf0 ? 3 : 4;
            return begins && length > i ? i : 0;
        }
    }
    return 0;
}

} // namespace

bool TextLine::hasInnerReturn() const
{
    // Bytes that begin a character and end the file count, too: further lines may come behind them.
    const auto size = static_cast<size_t>(next - begin);
    const void *const found = size > 0 ? std::memchr(begin, '\r', size) : nullptr;
    // At the line's end they are no part of it: another character follows.
    const auto isText = [](char c) { return c != '\r' && c != '\n' && c != ' ' && c != '\t'; };
    return found && std::any_of(static_cast<const char *>(found), next, isText);
}

TextLines::TextLines(QIODevice &device, const Limits &limits) : _device(device), _limits(limits)
{
    start();
}

TextLines::~TextLines() = default;

bool TextLines::isUTF8() const
{
    return _codec->mibEnum() == MibUTF8;
}

/// Reads the first bytes and chooses how the others are read.
void TextLines::start()
{
    constexpr int HeadBytes = 4;
    _buffer.resize(_limits.chunkBytes + HeadBytes);
    {
        const RawReading raw(_device);
        while (_end < HeadBytes) {
            const qint64 count = _device.read(_buffer.data() + _end, HeadBytes - qint64(_end));
            if (count <= 0)
                break;
            _end += static_cast<size_t>(count);
        }
    }
    _bytesRead = static_cast<qint64>(_end);
    const auto head = QByteArray::fromRawData(_buffer.data(), static_cast<int>(_end));
    const QTextCodec *const marked = QTextCodec::codecForUtfText(head, nullptr);
    const QTextCodec *const codec = marked ? marked : QTextCodec::codecForLocale();
    if (codec->mibEnum() == MibUTF8) {
        _codec = codec;
        _markBytes = marked ? 3 : 0;
        _begin = static_cast<size_t>(_markBytes);
    } else if (isSingleByteASCII(*codec)) {
        _codec = codec;
    } else {
        _codec = QTextCodec::codecForMib(MibUTF8);
        _transcodedFrom = codec->name();
        _markBytes = !marked ? 0 : codec->name().startsWith("UTF-32") ? 4 : 2;
        _decoder.reset(codec->makeDecoder());
        const QByteArray bytes(head.constData(), head.size());
        _end = 0;
        _transcoded = _decoder->toUnicode(bytes).toUtf8();
        _buffer.resize(std::max(_buffer.size(), static_cast<size_t>(_transcoded.size())));
        std::memcpy(_buffer.data(), _transcoded.constData(),
                    static_cast<size_t>(_transcoded.size()));
        _end = static_cast<size_t>(_transcoded.size());
    }
}

/// Reads more bytes behind those that are not handed out yet, which move to the front.
/// \return false when there are none.
bool TextLines::fill()
{
    if (_atEnd)
        return false;
    if (_begin > 0) {
        std::memmove(_buffer.data(), _buffer.data() + _begin, _end - _begin);
        _end -= _begin;
        _begin = 0;
    }
    // A chunk takes up to three times its bytes in UTF-8 (from UTF-16), or a little more at its
    // ends.
    const size_t room = (_decoder ? 4 : 1) * _limits.chunkBytes + 16;
    if (_buffer.size() - _end < room) {
        // Doubling keeps the work for one long line in proportion to its length.
        _buffer.resize(std::max(_end + room, 2 * _buffer.size()));
    }
    const size_t count = readChunk(_buffer.data() + _end);
    _end += count;
    return !_atEnd || count > 0;
}

/// \return bytes of text at `to`. Sets `_atEnd` when no more will come.
size_t TextLines::readChunk(char *to)
{
    const RawReading raw(_device);
    if (!_decoder) {
        const qint64 count = _device.read(to, static_cast<qint64>(_limits.chunkBytes));
        _atEnd = count <= 0;
        _bytesRead += std::max<qint64>(count, 0);
        return static_cast<size_t>(std::max<qint64>(count, 0));
    }
    const QByteArray bytes = _device.read(static_cast<qint64>(_limits.chunkBytes));
    _atEnd = bytes.isEmpty();
    _bytesRead += bytes.size();
    QString text = _halfPair;
    if (!_atEnd) // of no bytes, the decoder of UTF-32 makes a character
        text += _decoder->toUnicode(bytes);
    _halfPair.clear();
    if (!_atEnd && !text.isEmpty() && text.at(text.size() - 1).isHighSurrogate()) {
        _halfPair = text.right(1);
        text.chop(1);
    }
    _transcoded = text.toUtf8();
    const auto size = static_cast<size_t>(_transcoded.size());
    std::memcpy(to, _transcoded.constData(), size);
    return size;
}

bool TextLines::next(TextLine &line)
{
    if (_lineTooLong)
        return false;
    size_t searched = _begin;
    const char *feed = nullptr;
    for (;;) {
        const char *const data = _buffer.data();
        feed = static_cast<const char *>(std::memchr(data + searched, '\n', _end - searched));
        if (feed)
            break;
        if (_end - _begin > _limits.lineBytes) {
            _lineTooLong = true;
            return false;
        }
        const size_t known = _end - _begin;
        if (!fill())
            break;
        searched = known; // what is not handed out begins at 0 now
    }
    if (!feed && _begin == _end)
        return false;
    line.begin = _buffer.data() + _begin;
    line.next = feed ? feed + 1 : _buffer.data() + _end;
    line.end = feed ? feed : line.next;
    if (!feed && isUTF8())
        line.end -= unfinishedBytes(line.begin, line.end);
    while (line.end > line.begin && line.end[-1] == '\r')
        --line.end;
    line.offset = _offset;
    line.number = ++_number;
    _offset += line.next - line.begin;
    _begin = static_cast<size_t>(line.next - _buffer.data());
    return true;
}

} // namespace Halvard::Orv::Checking
