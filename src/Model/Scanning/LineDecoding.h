/// \file
/// Decoding single lines of a file to what QTextStream gives for them.
#pragma once

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <cstddef>

class QTextCodec;

namespace Halvard::Orv {

/// Decodes the lines of a file in the codec that QTextStream would read it with.
///
/// QTextStream decodes a file in pieces, from the first byte to the last, and
/// finds its line feeds afterwards. That the lines can be decoded one by one takes
/// a codec that gives each ASCII byte its own character, whatever stands around
/// it, and is in its initial state after a line feed: ASCII and its single-byte
/// supersets, and UTF-8.
class LineDecoder
{
public:
    /// Bytes in the pieces that QTextStream reads.
    static constexpr qint64 PieceBytes = 16384;

    /// First bytes of a file that tell its codec.
    static constexpr int HeadBytes = 4;

    /// Chooses the codec by a file's first bytes and the locale.
    /// \return false when the file cannot be decoded line by line.
    bool start(const char *bytes, size_t count);

    /// The file comes as a stream: a QTextStream would cut it wherever its bytes happen to
    /// come, so that U+FEFF at the begin of a piece may as well be a character.
    void setStreamed(bool isStreamed) { _isStreamed = isStreamed; }

    /// Bytes of the byte-order mark with which the file begins. They belong to no
    /// line.
    size_t markBytes() const { return _markBytes; }

    /// Decodes a line and takes its carriage returns out.
    /// \param begin the line's first byte, `offset` bytes from the file's begin.
    /// \param end past its line feed, or past its last byte when the file ends
    ///        without one.
    /// \param text the line without its line feed.
    /// \return false when what QTextStream would make of the line depends on other
    ///         lines. `text` is then not to be used.
    bool decode(const char *begin, const char *end, qint64 offset, QString &text) const;

private:
    const QTextCodec *_codec = nullptr;
    size_t _markBytes = 0;
    bool _isStreamed = false;
};

} // namespace Halvard::Orv
