#include "Pieces/LineChunks.h"

#include "Pieces/DeviceReading.h"

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

LineChunks::LineChunks(QIODevice &device, size_t chunkBytes, size_t maxLineBytes, Work *work)
    : _device(device), _chunkBytes(chunkBytes), _maxLineBytes(maxLineBytes), _work(work)
{}

bool LineChunks::next(TextPiece &piece)
{
    piece.restart(_offset);
    if (_isAtEnd || _lineTooLong)
        return false;
    char *const begin = piece.room(_rest.size() + _chunkBytes);
    if (!_rest.isEmpty())
        std::memcpy(begin, _rest.data(), _rest.size());
    piece.append(_rest.size());
    for (;;) {
        const size_t before = piece.filledBytes();
        const size_t count = readMore(piece);
        if (count == 0) {
            _isAtEnd = true;
            piece.cutAtEndOfFile(0);
            return piece.byteCount() > 0;
        }
        // Only what came last can hold a line feed: searching all of a long line
        // each time would be quadratic.
        const size_t whole = bytesOfWholeLines(piece.filled() + before, count);
        if (whole > 0) {
            keepRest(piece, before + whole);
            piece.cut(0, before + whole);
            return true;
        }
        if (piece.filledBytes() > _maxLineBytes) {
            _lineTooLong = true;
            return false;
        }
    }
}

/// Appends a chunk to the piece and returns its size, 0 at the end.
size_t LineChunks::readMore(TextPiece &piece)
{
    const size_t count = readSome(_device, piece.room(_chunkBytes), _chunkBytes, _work);
    piece.append(count);
    return count;
}

void LineChunks::keepRest(const TextPiece &piece, size_t lineBytes)
{
    const size_t count = piece.filledBytes() - lineBytes;
    _rest.resize(count);
    if (count > 0)
        std::memcpy(_rest.data(), piece.filled() + lineBytes, count);
    _offset += static_cast<qint64>(lineBytes);
}

} // namespace Halvard::Orv
