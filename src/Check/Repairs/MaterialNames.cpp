#include "Repairs/MaterialNames.h"

#include <OrvModel/MTLReader.h>

#include <QtCore/QTextCodec>
#include <QtCore/QTextStream>

namespace Halvard::Orv::Checking {

namespace {

const QLatin1String DefaultName("<default>");

bool isWhole(const QString &written)
{
    return !written.isEmpty() && firstWord(written) == written;
}

/// `written` in characters that both line readers take for part of a word.
QString asWord(const QString &written)
{
    const QTextCodec &codec = *QTextCodec::codecForLocale();
    QString word;
    for (const QChar character : written) {
        const bool isWord = !character.isSpace() && character != QLatin1Char('#') &&
                            character.unicode() >= ' ' &&
                            (character.isSurrogate() || codec.canEncode(character));
        word += isWord ? character : QLatin1Char('_');
    }
    return isDefinable(word) ? word : QStringLiteral("unnamed");
}

} // namespace

QString firstWord(const QString &text)
{
    int end = 0;
    while (end < text.size() && !text.at(end).isSpace())
        ++end;
    return text.left(end);
}

bool isDefinable(const QString &name)
{
    QString text = QLatin1String("newmtl ") + name;
    QTextStream stream(&text, QIODevice::ReadOnly);
    MTLReader reader(stream, false);
    reader.next();
    return reader.valid() && reader.parseLine() && reader.getNewmtlName() == name;
}

void MaterialNames::take(const QString &written)
{
    if (isWhole(written))
        _taken.insert(written);
}

void MaterialNames::addDefinition(const QString &written)
{
    if (_definitions.contains(written))
        return;
    _definitions.insert(written, written);
    _definitionsInOrder.append(written);
    const QString word = firstWord(written);
    if (!_ofWords.contains(word))
        _ofWords.insert(word, written);
    take(written);
}

void MaterialNames::addUse(const QString &written)
{
    if (_uses.contains(written))
        return;
    _uses.insert(written, written);
    _usesInOrder.append(written);
    take(written);
}

void MaterialNames::settle()
{
    _taken.insert(DefaultName);
    for (const QString &written : _definitionsInOrder) {
        if (!isWhole(written))
            _definitions[written] = freshName(written);
    }
    for (const QString &written : _usesInOrder)
        _uses[written] = settledUse(written);
}

QString MaterialNames::settledUse(const QString &written)
{
    if (_definitions.contains(written))
        return _definitions.value(written);
    const QString word = firstWord(written);
    if (isWhole(written)) {
        if (written == DefaultName)
            return written;
        const auto cut = _ofWords.constFind(word);
        if (cut != _ofWords.constEnd())
            return _definitions.value(*cut);
        return isDefinable(written) ? written : freshName(written);
    }
    if (!word.isEmpty() && (_definitions.contains(word) || word == DefaultName))
        return word;
    return freshName(written);
}

/// A name that no other material has.
QString MaterialNames::freshName(const QString &written)
{
    QString &fresh = _fresh[written];
    if (!fresh.isNull())
        return fresh;
    const QString base = asWord(written);
    fresh = base;
    while (_taken.contains(fresh))
        fresh = QStringLiteral("%1_%2").arg(base).arg(++_numbers[base] + 1);
    _taken.insert(fresh);
    return fresh;
}

} // namespace Halvard::Orv::Checking
