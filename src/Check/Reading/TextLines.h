/// \file
/// A text file in lines, with their numbers and places, in memory that does not grow with it.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <cstddef>
#include <memory>
#include <vector>

class QIODevice;
class QTextCodec;
class QTextDecoder;

namespace Halvard::Orv::Checking {

/// One line. The bytes are valid until the next line is asked for.
struct TextLine
{
    const char *begin = nullptr; ///< First byte.
    const char *end = nullptr;   ///< Past the text: at its carriage returns and line feed.
    const char *next = nullptr;  ///< Past the line feed; past the last byte where there is none.
    qint64 offset = 0;           ///< Of `begin` from the text's first byte.
    qint64 number = 0;           ///< Counted from 1.

    /// Whether the file ends with this line, without a line feed.
    bool isOpen() const { return next == begin || next[-1] != '\n'; }
    /// Whether text follows a carriage return in the line: the loader drops the return, and reads
    /// both sides of it as one line.
    bool hasInnerReturn() const;
};

/// Reads a device line by line, where lines end as they do for the loader: at line feeds only.
///
/// Most files are read as they are: the bytes of a line are those of the file. That takes an
/// encoding that keeps ASCII bytes for ASCII characters: UTF-8 and the single-byte encodings.
/// Other files (those with a byte-order mark of UTF-16 or UTF-32, and all files in a locale of
/// another multi-byte encoding) are turned into UTF-8 on the way, and lines and offsets are
/// those of the UTF-8 text. Marks are no part of the text.
class TextLines
{
public:
    /// Sizes that tests make smaller.
    struct Limits
    {
        /// Bytes read at a time.
        size_t chunkBytes = size_t(1) << 18;
        /// A longer line is too long, as for the loader: a QString holds 2^30 characters.
        size_t lineBytes = (size_t(1) << 30) - (size_t(1) << 20);
    };

    /// \param device open for reading, at its begin; not owned. Its text mode is of no account.
    explicit TextLines(QIODevice &device) : TextLines(device, Limits()) {}
    TextLines(QIODevice &device, const Limits &limits);
    ~TextLines();
    TextLines(const TextLines &) = delete;
    TextLines &operator=(const TextLines &) = delete;

    /// Moves to the next line.
    /// \return false at the end, and where a line is too long. A read error is taken for the end,
    ///         as the loader does.
    bool next(TextLine &line);

    /// Whether reading ended at a line of more bytes than the limit.
    bool lineTooLong() const { return _lineTooLong; }

    /// What decodes the bytes of lines: UTF-8 or a single-byte encoding.
    const QTextCodec &codec() const { return *_codec; }
    /// Whether that is UTF-8.
    bool isUTF8() const;
    /// Name of the encoding that the file is turned into UTF-8 from; null where it is not.
    QByteArray transcodedFrom() const { return _transcodedFrom; }
    /// Bytes of the byte-order mark.
    qint64 markBytes() const { return _markBytes; }
    /// Bytes of the file that are read so far.
    qint64 bytesRead() const { return _bytesRead; }

private:
    bool fill();
    void start();
    size_t readChunk(char *to);

    QIODevice &_device;
    const Limits _limits;
    std::vector<char> _buffer;
    size_t _begin = 0; // of what is not handed out
    size_t _end = 0;   // of what is read
    qint64 _offset = 0;
    qint64 _number = 0;
    qint64 _bytesRead = 0;
    qint64 _markBytes = 0;
    bool _atEnd = false;
    bool _lineTooLong = false;
    const QTextCodec *_codec = nullptr;
    QByteArray _transcodedFrom;
    std::unique_ptr<QTextDecoder> _decoder; // null where bytes are taken as they are
    QString _halfPair;                      // a surrogate whose second half is not read yet
    QByteArray _transcoded;
};

} // namespace Halvard::Orv::Checking
