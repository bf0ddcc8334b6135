/// \file
/// Where the threads of a scan get their text.
#pragma once

#include "Pieces/FilePieces.h"
#include "Pieces/LineChunks.h"
#include "Pieces/TextPiece.h"

#include <QtCore/QtGlobal>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

class QIODevice;

namespace Halvard::Orv {

class Work;

/// A piece as a thread takes it.
struct PieceText
{
    TextPiece lines;
    size_t number = 0; ///< its place among the pieces
    FilePieces::Kind kind = FilePieces::Kind::None;
};

/// Hands out the pieces of a file, in the order of the file.
class PieceSource
{
public:
    virtual ~PieceSource() = default;

    /// Takes the next piece; its kind is None when there is none.
    /// \param text its buffer is used again.
    virtual void take(PieceText &text, bool isCaller) = 0;
};

/// Pieces of a regular file, read by whoever takes them.
class FileSource : public PieceSource
{
public:
    FileSource(int descriptor, size_t pieceBytes, size_t maxLineBytes)
        : _pieces(descriptor, pieceBytes, maxLineBytes)
    {}

    void take(PieceText &text, bool) override
    {
        text.number = _next++;
        text.kind = _pieces.read(text.number, text.lines);
    }

private:
    const FilePieces _pieces;
    std::atomic<size_t> _next{0};
};

/// Pieces of any device, which only the calling thread reads: it reads ahead for the others,
/// and takes a piece itself when there are enough.
class DeviceSource : public PieceSource
{
public:
    /// \param maxLineBytes a line that is longer by a piece is too long.
    DeviceSource(QIODevice &device, size_t pieceBytes, size_t maxLineBytes, Work &work);

    void take(PieceText &text, bool isCaller) override;

private:
    using Lock = std::unique_lock<std::mutex>;

    void readAhead(Lock &lock);
    TextPiece takeUnused();

    Work &_work;
    LineChunks _chunks;
    const size_t _enough; ///< pieces
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<TextPiece> _ready;
    std::vector<TextPiece> _unused; ///< their buffers are
    size_t _next = 0;               ///< number of the first that is ready
    bool _isRead = false;           ///< the device is at its end
};

} // namespace Halvard::Orv
