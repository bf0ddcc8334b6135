#include "Scanning/LineChunks.h"

#include <QtCore/QIODevice>

#include <cstring>

namespace Halvard::Orv {

namespace {

/// Bytes of `text` up to and including its last line feed; 0 without one.
size_t bytesOfWholeLines(const char *text, size_t count)
{
    while (count > 0 && text[count - 1] != '\n')
        --count;
    return count;
}

} // namespace

LineChunks::LineChunks(QIODevice &device, size_t chunkBytes, size_t maxLineBytes)
    : _device(device), _chunkBytes(chunkBytes), _maxLineBytes(maxLineBytes)
{
    _buffer.resize(Margin);
    std::memset(_buffer.data(), 0, Margin);
}

bool LineChunks::next()
{
    if (_endsOpen || _lineTooLong)
        return false;
    _filledBytes -= _lineBytes;
    _offset += static_cast<qint64>(_lineBytes);
    if (_filledBytes > 0)
        std::memmove(text(), text() + _lineBytes, _filledBytes);
    _lineBytes = 0;
    while (_lineBytes == 0) {
        const size_t before = _filledBytes;
        const size_t count = readMore();
        if (count == 0)
            return endWithLineFeed();
        // Only what came last can hold a line feed: searching all of a long line
        // each time would be quadratic.
        const size_t whole = bytesOfWholeLines(text() + before, count);
        if (whole > 0) {
            _lineBytes = before + whole;
        } else if (_filledBytes > _maxLineBytes) {
            _lineTooLong = true;
            return false;
        }
    }
    return true;
}

/// Appends a chunk to the buffer and returns its size, 0 at the end.
size_t LineChunks::readMore()
{
    const size_t room = Margin + _filledBytes + _chunkBytes + 1 + Margin; // 1: a last line feed
    if (_buffer.size() < room)
        _buffer.resize(2 * room);
    const qint64 count = _device.read(text() + _filledBytes, static_cast<qint64>(_chunkBytes));
    if (count > 0)
        _filledBytes += static_cast<size_t>(count);
    std::memset(text() + _filledBytes, 0, Margin);
    return count > 0 ? static_cast<size_t>(count) : 0;
}

/// Gives the last line of a file the line feed that it lacks.
bool LineChunks::endWithLineFeed()
{
    if (_filledBytes == 0)
        return false;
    text()[_filledBytes] = '\n';
    _lineBytes = ++_filledBytes;
    _endsOpen = true;
    std::memset(text() + _filledBytes, 0, Margin);
    return true;
}

} // namespace Halvard::Orv
