/// \file
/// Reading a device in chunks of whole lines.
#pragma once

#include "Memory/GrowArray.h"

#include <QtCore/QtGlobal>

#include <cstddef>

class QIODevice;

namespace Halvard::Orv {

/// Reads on and on into one buffer, and cuts after the last line feed: what
/// follows it moves to the front before the next chunk comes behind it.
///
/// The buffer grows with the longest line only. Around the lines it holds
/// readable bytes without meaning, so that they may be loaded in blocks.
class LineChunks
{
public:
    /// Readable bytes before begin(), and behind end().
    static constexpr size_t Margin = 64;

    /// \param device reads raw bytes; not owned.
    /// \param chunkBytes bytes asked for at a time, at least 1.
    /// \param maxLineBytes a line that is longer by a chunk is too long.
    LineChunks(QIODevice &device, size_t chunkBytes, size_t maxLineBytes);

    /// Moves to the next lines.
    /// \return false when there are none, or a line is too long. An error while
    ///         reading is taken for the end.
    bool next();

    /// The lines; the last byte is a line feed.
    const char *begin() const { return _buffer.data() + Margin; }
    const char *end() const { return begin() + _lineBytes; }
    /// Whether the last line feed stands in for the end of the file.
    bool endsOpen() const { return _endsOpen; }
    bool lineTooLong() const { return _lineTooLong; }
    size_t byteCount() const { return _lineBytes; }
    /// Where begin() lies in the device.
    qint64 offset() const { return _offset; }
    /// Where `place`, from begin() to end(), lies in the device.
    qint64 offsetOf(const char *place) const { return _offset + (place - begin()); }

private:
    char *text() { return _buffer.data() + Margin; }
    size_t readMore();
    bool endWithLineFeed();

    QIODevice &_device;
    const size_t _chunkBytes;
    const size_t _maxLineBytes;
    GrowArray<char> _buffer;
    size_t _filledBytes = 0;
    size_t _lineBytes = 0;
    qint64 _offset = 0;
    bool _endsOpen = false;
    bool _lineTooLong = false;
};

} // namespace Halvard::Orv
