/// \file
/// Reading a device in pieces of whole lines, one after the other.
#pragma once

#include "Memory/GrowArray.h"
#include "Pieces/TextPiece.h"

#include <QtCore/QtGlobal>

#include <cstddef>

class QIODevice;

namespace Halvard::Orv {

class Work;

/// Cuts after the last line feed of what it reads; the rest begins the next piece.
class LineChunks
{
public:
    /// \param device reads raw bytes; not owned. One that is sequential is waited for.
    /// \param chunkBytes bytes asked for at a time, at least 1.
    /// \param maxLineBytes a line that is longer by a chunk is too long.
    /// \param work asked, while a device is waited for, whether to go on; may be null.
    LineChunks(QIODevice &device, size_t chunkBytes, size_t maxLineBytes, Work *work = nullptr);

    /// Reads the next lines.
    /// \return false when there are none, or a line is too long. An error while
    ///         reading is taken for the end.
    bool next(TextPiece &piece);

    bool lineTooLong() const { return _lineTooLong; }

private:
    size_t readMore(TextPiece &piece);
    void keepRest(const TextPiece &piece, size_t lineBytes);

    QIODevice &_device;
    const size_t _chunkBytes;
    const size_t _maxLineBytes;
    Work *const _work;
    GrowArray<char> _rest; ///< read, but behind the last line feed
    qint64 _offset = 0;    ///< of the first byte of the rest
    bool _isAtEnd = false;
    bool _lineTooLong = false;
};

} // namespace Halvard::Orv
