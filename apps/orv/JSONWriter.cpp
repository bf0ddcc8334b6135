#include "JSONWriter.h"

#include "WriteAll.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace Halvard::Orv::Cli {

namespace {

constexpr int FlushAt = 64 * 1024;

/// Half of a pair of characters, which stands for a byte of a file name that is no text, is none in
/// UTF-8; U+FFFD says that something is missing.
QString withoutHalves(QString text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else if (text.at(i).isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

/// Whether a character is written by its number: those that JSON wants so, and those that would
/// change how a terminal shows the rest.
bool isEscaped(ushort character)
{
    return character < 0x20 || (character >= 0x7F && character <= 0x9F) || character == 0x061C ||
           character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

QByteArray quoted(const QString &text)
{
    QString result(QLatin1Char('"'));
    for (const QChar character : withoutHalves(text)) {
        if (isEscaped(character.unicode())) {
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
            continue;
        }
        if (character == QLatin1Char('"') || character == QLatin1Char('\\'))
            result += QLatin1Char('\\');
        result += character;
    }
    return (result + QLatin1Char('"')).toUtf8();
}

} // namespace

JSONWriter::JSONWriter(QIODevice &device) : _device(device)
{
    _pending.reserve(FlushAt + 4096);
}

void JSONWriter::raw(const char *bytes, int size)
{
    _pending.append(bytes, size);
    if (_pending.size() >= FlushAt)
        flush();
}

void JSONWriter::flush()
{
    if (!_isBroken && !writeAll(_device, _pending))
        _isBroken = true;
    _pending.resize(0); // keeps the memory
}

void JSONWriter::newLine()
{
    static const QByteArray spaces(64, ' ');
    raw("\n", 1);
    raw(spaces.constData(), std::min(int(_levels.size()) * 2, spaces.size()));
}

/// The separator and the line break that come before a value or a key.
void JSONWriter::startItem()
{
    if (_isAfterKey) {
        _isAfterKey = false;
        return;
    }
    if (_levels.empty())
        return;
    Level &level = _levels.back();
    if (level.count > 0)
        raw(",", 1);
    if (level.perLine != OneLine && level.count % quint64(level.perLine) == 0)
        newLine();
    else if (level.count > 0)
        raw(" ", 1);
    ++level.count;
}

void JSONWriter::open(char bracket, int perLine)
{
    startItem();
    raw(&bracket, 1);
    _levels.push_back({perLine});
}

void JSONWriter::close(char bracket)
{
    const Level level = _levels.back();
    _levels.pop_back();
    if (level.count > 0 && level.perLine != OneLine)
        newLine();
    raw(&bracket, 1);
}

void JSONWriter::beginObject()
{
    open('{', 1);
}

void JSONWriter::endObject()
{
    close('}');
}

void JSONWriter::beginArray(int perLine)
{
    open('[', perLine);
}

void JSONWriter::endArray()
{
    close(']');
}

void JSONWriter::key(const QString &name)
{
    startItem();
    const QByteArray text = quoted(name) + ": ";
    raw(text.constData(), text.size());
    _isAfterKey = true;
}

void JSONWriter::key(const char *ascii)
{
    key(QString(QLatin1String(ascii)));
}

void JSONWriter::value(const QString &text)
{
    startItem();
    const QByteArray quotedText = quoted(text);
    raw(quotedText.constData(), quotedText.size());
}

void JSONWriter::value(bool isTrue)
{
    startItem();
    raw(isTrue ? "true" : "false", isTrue ? 4 : 5);
}

void JSONWriter::null()
{
    startItem();
    raw("null", 4);
}

template <typename Number>
void JSONWriter::number(Number value)
{
    startItem();
    char text[40];
    const auto result = std::to_chars(text, text + sizeof(text), value);
    raw(text, int(result.ptr - text));
}

void JSONWriter::value(qint64 number)
{
    this->number(number);
}

void JSONWriter::value(quint64 number)
{
    this->number(number);
}

void JSONWriter::value(float number)
{
    if (std::isfinite(number))
        this->number(number);
    else
        value(double(number));
}

void JSONWriter::value(double number)
{
    if (std::isfinite(number))
        this->number(number);
    else if (std::isnan(number))
        value(QStringLiteral("nan"));
    else
        value(number > 0 ? QStringLiteral("inf") : QStringLiteral("-inf"));
}

bool JSONWriter::finish()
{
    raw("\n", 1);
    flush();
    return !_isBroken;
}

} // namespace Halvard::Orv::Cli
