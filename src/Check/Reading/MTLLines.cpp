#include "Reading/MTLLines.h"

#include <QtCore/QTextStream>

#include <algorithm>

namespace Halvard::Orv::Checking {

namespace {

/// Length of the first word.
int wordLength(const QString &text)
{
    const auto end = std::find_if(text.cbegin(), text.cend(),
                                  [](QChar character) { return character.isSpace(); });
    return static_cast<int>(end - text.cbegin());
}

} // namespace

bool MTLLines::next()
{
    _hasContent = false;
    _isRead = false;
    _type = MTLReader::LINE_UNKNOWN;
    _content.clear();
    _word.clear();
    if (!_text.next(_line))
        return false;
    _tokens.split(_line);
    if (_tokens.isEmpty())
        return true;
    QString text = _tokens.decoded(_line.begin, _line.end);
    QTextStream stream(&text, QIODevice::ReadOnly);
    MTLReader reader(stream, false);
    reader.next();
    if (!reader.valid())
        return true;
    _hasContent = true;
    _content = reader.line();
    _type = reader.getLineType();
    _isRead = reader.parseLine();
    if (_isRead) {
        std::copy_n(reader.getKa(), 3, _values);
        // The reader resolves paths; what is written stands in the line.
        if (_type == MTLReader::LINE_NEWMTL || _type >= MTLReader::LINE_MAP_KD) {
            const QString written = rest();
            _word = written.left(wordLength(written));
        }
    }
    return true;
}

QString MTLLines::rest() const
{
    return _content.mid(wordLength(_content)).trimmed();
}

QString MTLLines::keyword() const
{
    return _content.left(wordLength(_content));
}

} // namespace Halvard::Orv::Checking
