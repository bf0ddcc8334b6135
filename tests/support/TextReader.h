/// \file
/// A line reader together with the text that it reads.
#pragma once

#include <QtCore/QBuffer>
#include <QtCore/QByteArray>
#include <QtCore/QTextStream>

#include <memory>
#include <string>

namespace OrvTest {

/// Makes a reader of UTF-8 text, opened the way files are. Whatever `Reader` takes
/// beside the stream follows the text.
template <typename Reader>
class TextReader
{
public:
    template <typename... Arguments>
    explicit TextReader(const std::string &text, Arguments... arguments)
        : _bytes(text.data(), static_cast<int>(text.size())), _buffer(&_bytes)
    {
        _buffer.open(QIODevice::ReadOnly | QIODevice::Text);
        _stream.setDevice(&_buffer);
        _stream.setCodec("UTF-8");
        _reader = std::make_unique<Reader>(_stream, arguments...);
    }

    Reader &operator*() { return *_reader; }
    Reader *operator->() { return _reader.get(); }
    QTextStream &stream() { return _stream; }

private:
    QByteArray _bytes;
    QBuffer _buffer;
    QTextStream _stream;
    std::unique_ptr<Reader> _reader;
};

} // namespace OrvTest
