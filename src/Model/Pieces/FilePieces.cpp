#include "Pieces/FilePieces.h"

#include "Pieces/DeviceReading.h"

#include <algorithm>
#include <cstring>

namespace Halvard::Orv {

namespace {

/// Bytes read at first to complete a piece's last line.
constexpr size_t FirstStep = 512;

/// Behind the first line feed from `from` on; 0 without one.
size_t behindLineFeed(const TextPiece &piece, size_t from)
{
    const char *const text = piece.filled();
    const void *const feed = std::memchr(text + from, '\n', piece.filledBytes() - from);
    return feed ? static_cast<size_t>(static_cast<const char *>(feed) + 1 - text) : 0;
}

/// Behind the last line feed from `from` on; `from` without one.
size_t behindLastLineFeed(const TextPiece &piece, size_t from)
{
    size_t end = piece.filledBytes();
    while (end > from && piece.filled()[end - 1] != '\n')
        --end;
    return end;
}

} // namespace

/// Appends the next `count` bytes of the file.
/// \param start where the piece's first byte lies in the file.
/// \return false when there are fewer.
bool FilePieces::append(TextPiece &piece, qint64 start, size_t count) const
{
    const qint64 offset = start + static_cast<qint64>(piece.filledBytes());
    const size_t read = readAt(_descriptor, offset, piece.room(count), count);
    piece.append(read);
    return read == count;
}

FilePieces::Kind FilePieces::read(size_t number, TextPiece &piece) const
{
    // A line begins behind a line feed: that before the piece's own bytes is read, too.
    const size_t lead = number == 0 ? 0 : 1;
    const auto start = static_cast<qint64>(number * _pieceBytes - lead);
    piece.restart(start);
    piece.room(lead + _pieceBytes + FirstStep); // all that most pieces take
    const bool isWhole = append(piece, start, lead + _pieceBytes);
    const size_t filled = piece.filledBytes();
    if (filled <= lead) {
        piece.cut(0, 0);
        return Kind::None;
    }
    size_t begin = 0;
    if (number > 0) {
        // A line feed at the very end begins a line of the next piece.
        begin = behindLineFeed(piece, 0);
        if (begin == 0 || (isWhole && begin == filled)) {
            piece.cut(filled, filled);
            return isWhole ? Kind::Inner : Kind::Last;
        }
    }
    if (!isWhole) {
        piece.cutAtEndOfFile(begin);
        return Kind::Last;
    }
    return completeLastLine(piece, start, begin);
}

/// Reads on to the end of the line that the piece's last byte is in.
FilePieces::Kind FilePieces::completeLastLine(TextPiece &piece, qint64 start, size_t begin) const
{
    size_t searched = piece.filledBytes() - 1;
    bool hasMore = true;
    for (size_t step = FirstStep;; step = std::min(2 * step, _pieceBytes + FirstStep)) {
        const size_t filled = piece.filledBytes();
        const size_t end = behindLineFeed(piece, searched);
        if (end > 0) {
            piece.cut(begin, end);
            return Kind::Inner;
        }
        if (!hasMore) {
            piece.cutAtEndOfFile(begin);
            return Kind::Last;
        }
        if (filled - begin > _pieceBytes + _maxLineBytes) {
            piece.cut(begin, behindLastLineFeed(piece, begin)); // what comes before that line
            return Kind::LineTooLong;
        }
        searched = filled;
        hasMore = append(piece, start, step);
    }
}

} // namespace Halvard::Orv
