#include "reference/TextOddities.h"

#include "reference/NumberTexts.h"

#include <QtCore/QVector>

namespace OrvReference {

namespace {

/// Blanks of all kinds, and characters that only look like blanks.
const char *const Blanks[] = {" ",      "  ",     "\t",     " \t ",   "\v",     "\f",
                              "\u00a0", "\u0085", "\u2003", "\u2028", "\u3000", "\u1680",
                              "\u202f", "\u180e", "\u200b", "\ufeff", "\x1c",   "\x1f"};

QString anyBlank(Dice &dice)
{
    const int index = dice.oneIn(3) ? dice.below(18) : dice.below(6);
    return QString::fromUtf8(Blanks[index]);
}

QString withOddBlanks(Dice &dice, const QString &line)
{
    QString text;
    if (dice.oneIn(3))
        text += anyBlank(dice);
    for (const QChar &character : line) {
        if (character == QLatin1Char(' '))
            text += anyBlank(dice);
        else
            text += character;
    }
    if (dice.oneIn(3))
        text += anyBlank(dice);
    if (dice.oneIn(8))
        text.insert(dice.below(text.size() + 1), QLatin1Char('\r'));
    if (dice.oneIn(12))
        text.insert(dice.below(text.size() + 1), QChar(0));
    return text;
}

QString oddEnd(Dice &dice)
{
    const char *const ends[] = {"\r", "\n\r", "\r\r\n", "\n\n", "\n\r\n", "\\\n", ""};
    return QLatin1String(oneOf(dice, ends));
}

QString joined(Dice &dice, const QStringList &lines, const Oddness &oddness)
{
    const QString end = dice.oneIn(5) ? QStringLiteral("\r\n") : QStringLiteral("\n");
    QString text;
    for (const QString &line : lines) {
        text += chance(dice, oddness.blanks) ? withOddBlanks(dice, line) : line;
        text += chance(dice, oddness.ends) ? oddEnd(dice) : end;
    }
    if (dice.oneIn(4))
        text.chop(end.size());
    return text;
}

QByteArray utf16(const QString &text, bool bigEndian)
{
    QByteArray bytes;
    for (const QChar &character : text) {
        const char low = static_cast<char>(character.cell());
        const char high = static_cast<char>(character.row());
        bytes.append(bigEndian ? high : low).append(bigEndian ? low : high);
    }
    return bytes;
}

QByteArray utf32(const QString &text, bool bigEndian)
{
    QByteArray bytes;
    const QVector<uint> codes = text.toUcs4();
    for (const uint code : codes) {
        for (int i = 0; i < 4; ++i)
            bytes.append(static_cast<char>((code >> (bigEndian ? 24 - 8 * i : 8 * i)) & 0xffu));
    }
    return bytes;
}

QByteArray inOddEncoding(Dice &dice, const QString &text)
{
    const QString marked = QChar(QChar::ByteOrderMark) + text;
    switch (dice.below(7)) {
    case 0:
        return marked.toUtf8();
    case 1:
        return utf16(marked, false);
    case 2:
        return utf16(marked, true);
    case 3:
        return utf32(marked, false);
    case 4:
        return utf32(marked, true);
    case 5:
        return utf16(text, dice.oneIn(2));
    default:
        return text.toLatin1();
    }
}

void damage(Dice &dice, QByteArray &bytes)
{
    const char *const snippets[] = {"\xc3",
                                    "\xff\xfe",
                                    "\xe2\x80",
                                    "\xed\xa0\x80",
                                    "\xf4\x90\x80\x80",
                                    "\xc0\xaf",
                                    "\x80",
                                    "\r",
                                    "\n",
                                    "/",
                                    "#",
                                    "-",
                                    "f ",
                                    "v "};
    for (int round = dice.between(1, 4); round > 0; --round) {
        const int place = dice.below(bytes.size() + 1);
        switch (dice.below(6)) {
        case 0:
            bytes.insert(place, '\0');
            break;
        case 1:
            bytes.insert(place, static_cast<char>(dice.below(256)));
            break;
        case 2:
            bytes.remove(place, dice.between(1, 5));
            break;
        case 3:
            if (dice.oneIn(4))
                bytes.truncate(place);
            break;
        case 4: {
            const int copied = dice.below(bytes.size() + 1);
            bytes.insert(place, bytes.mid(copied, dice.between(1, 60)));
            break;
        }
        default:
            bytes.insert(place, oneOf(dice, snippets));
            break;
        }
    }
}

/// Brings what stands at the start of the text to where a reader's buffer ends.
QString comment(Dice &dice)
{
    const int buffer = 16384 * dice.between(1, 2);
    return QLatin1Char('#') + QString(buffer - dice.below(600), QLatin1Char('c'));
}

} // namespace

bool chance(Dice &dice, int percent)
{
    return dice.below(100) < percent;
}

Oddness anyOddness(Dice &dice)
{
    Oddness oddness;
    int *const kinds[] = {&oddness.numbers, &oddness.indices, &oddness.lines,
                          &oddness.blanks,  &oddness.ends,    &oddness.bytes};
    const int kind = dice.below(10);
    if (kind < 4)
        return oddness;
    if (kind < 7) {
        for (int i = dice.between(1, 3); i > 0; --i)
            *oneOf(dice, kinds) = dice.between(3, 15);
    } else if (kind < 9) {
        *oneOf(dice, kinds) = dice.between(30, 70);
    } else {
        for (int *const percent : kinds)
            *percent = dice.between(1, 15);
    }
    return oddness;
}

QByteArray fileContents(Dice &dice, const QStringList &lines, const Oddness &oddness)
{
    QString text = joined(dice, lines, oddness);
    if (dice.oneIn(100))
        text.prepend(comment(dice) + QLatin1Char('\n'));
    QByteArray bytes = chance(dice, oddness.bytes) ? inOddEncoding(dice, text) : text.toUtf8();
    if (chance(dice, oddness.bytes))
        damage(dice, bytes);
    return bytes;
}

} // namespace OrvReference
