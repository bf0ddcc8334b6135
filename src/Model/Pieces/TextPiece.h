/// \file
/// A piece of a file: whole lines, in a buffer of their own.
#pragma once

#include "Memory/GrowArray.h"

#include <QtCore/QtGlobal>

#include <cstddef>
#include <cstring>

namespace Halvard::Orv {

/// Lines, each with its line feed. Around them are readable bytes without meaning, so that
/// they may be loaded in blocks.
///
/// The buffer keeps its room when it is filled again. Reading appends bytes, then cuts.
class TextPiece
{
public:
    /// Readable bytes before begin(), and behind end().
    static constexpr size_t Margin = 64;

    TextPiece()
    {
        _buffer.resize(Margin);
        std::memset(_buffer.data(), 0, Margin);
    }

    const char *begin() const { return bytes() + _begin; }
    const char *end() const { return bytes() + _end; }
    size_t byteCount() const { return _end - _begin; }
    /// Whether the last line feed stands in for the end of the file.
    bool endsOpen() const { return _endsOpen; }
    /// Where begin() lies in the file.
    qint64 offset() const { return _offset; }
    /// Where `place`, from begin() to end(), lies in the file.
    qint64 offsetOf(const char *place) const { return _offset + (place - begin()); }

    /// \name Filling
    /// @{

    /// \param offset of the first byte to be appended.
    void restart(qint64 offset)
    {
        _filled = _begin = _end = 0;
        _offset = offset;
        _endsOpen = false;
    }

    /// Room for `count` more bytes, and for what closing takes; append() makes those that were
    /// written part of the piece.
    char *room(size_t count)
    {
        const size_t needed = Margin + _filled + count + 1 + Margin; // 1: a last line feed
        if (_buffer.size() < needed)
            _buffer.resize(_buffer.size() <= Margin ? needed : 2 * needed);
        return bytes() + _filled;
    }
    void append(size_t count) { _filled += count; }

    size_t filledBytes() const { return _filled; }
    const char *filled() const { return bytes(); }

    /// The lines are [`begin`, `end`) of the filled bytes.
    void cut(size_t begin, size_t end)
    {
        _begin = begin;
        _end = end;
        _offset += static_cast<qint64>(begin);
        // What follows is another's, or old: bytes without meaning.
        std::memset(room(0), 0, Margin);
    }

    /// As cut() up to the last byte filled, to which the line feed is added that the file lacks.
    void cutAtEndOfFile(size_t begin)
    {
        if (_filled > begin && bytes()[_filled - 1] != '\n') {
            *room(1) = '\n';
            append(1);
            _endsOpen = true;
        }
        cut(begin, _filled);
    }

    /// @}

private:
    char *bytes() { return _buffer.data() + Margin; }
    const char *bytes() const { return _buffer.data() + Margin; }

    GrowArray<char> _buffer;
    size_t _filled = 0;
    size_t _begin = 0;
    size_t _end = 0;
    qint64 _offset = 0;
    bool _endsOpen = false;
};

} // namespace Halvard::Orv
