#include "Pieces/PieceSource.h"

#include "Threads/Work.h"

#include <chrono>
#include <utility>

namespace Halvard::Orv {

DeviceSource::DeviceSource(QIODevice &device, size_t pieceBytes, size_t maxLineBytes, Work &work)
    : _work(work), _chunks(device, pieceBytes, maxLineBytes, &work),
      _enough(2 * size_t(work.threadCount()))
{}

void DeviceSource::take(PieceText &text, bool isCaller)
{
    constexpr std::chrono::milliseconds LongestWait(10);
    Lock lock(_mutex);
    while (isCaller && !_isRead && _ready.size() < _enough)
        readAhead(lock);
    while (_ready.empty() && !_isRead && !_work.isStopping())
        _changed.wait_for(lock, LongestWait);
    if (_ready.empty()) {
        // Whoever comes now learns of a line that is too long; it is behind all pieces.
        text.number = _next;
        text.lines.cut(0, 0);
        text.kind = _isRead && _chunks.lineTooLong() ? FilePieces::Kind::LineTooLong
                                                     : FilePieces::Kind::None;
        return;
    }
    std::swap(text.lines, _ready.front());
    _unused.push_back(std::move(_ready.front()));
    _ready.pop_front();
    text.number = _next++;
    text.kind = FilePieces::Kind::Inner;
}

/// Reads a piece, without the lock.
void DeviceSource::readAhead(Lock &lock)
{
    TextPiece piece = takeUnused();
    lock.unlock();
    const bool hasLines = _chunks.next(piece);
    lock.lock();
    if (hasLines)
        _ready.push_back(std::move(piece));
    else
        _isRead = true;
    _changed.notify_all();
}

TextPiece DeviceSource::takeUnused()
{
    if (_unused.empty())
        return {};
    TextPiece piece = std::move(_unused.back());
    _unused.pop_back();
    return piece;
}

} // namespace Halvard::Orv
