/// \file
/// A line reader together with the text that it reads.
#pragma once

#include <QtCore/QBuffer>
#include <QtCore/QByteArray>
#include <QtCore/QTextStream>

#include <memory>
#include <string>
#include <vector>

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

/// The types of the lines behind the current one, up to and including the end.
template <typename Reader>
std::vector<int> followingTypes(TextReader<Reader> &reader)
{
    std::vector<int> types;
    while (reader->valid()) {
        reader->next();
        types.push_back(reader->getLineType());
    }
    return types;
}

/// The three values of a line.
template <typename Floats>
std::vector<float> floatsOf(const Floats &values)
{
    return {values[0], values[1], values[2]};
}

} // namespace OrvTest
