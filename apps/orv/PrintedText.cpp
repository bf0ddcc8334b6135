#include "PrintedText.h"

#include "Confinement.h"

#include <QtCore/QStringList>

namespace Halvard::Orv::Cli {

namespace {

constexpr int LongestName = 200;
constexpr int LongestMessage = 10 * LongestName;

/// The beginning and the end, where what tells names apart mostly is.
QString cut(const QString &text, int most)
{
    if (text.size() <= most)
        return text;
    const QString gap = QStringLiteral("...");
    const int end = (most - gap.size()) / 3;
    return text.left(most - gap.size() - end) + gap + text.right(end);
}

bool changesTheTerminal(QChar character)
{
    const ushort code = character.unicode();
    return code < 0x20 || (code >= 0x7f && code <= 0x9f) || code == 0x061c || code == 0x200e ||
           code == 0x200f || (code >= 0x2028 && code <= 0x202e) ||
           (code >= 0x2066 && code <= 0x2069) || code == 0xfeff;
}

QString numbered(ushort code)
{
    return code < 0x100 ? QStringLiteral("\\x%1").arg(code, 2, 16, QLatin1Char('0'))
                        : QStringLiteral("\\u{%1}").arg(code, 4, 16, QLatin1Char('0'));
}

/// Pairs that stand for one character stay; a half alone stands for a byte that is no text.
QString escaped(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool isPair =
            character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair) {
            result += character;
            result += text.at(++i);
        } else if (character.isLowSurrogate()) {
            result += numbered(character.unicode() & 0xff);
        } else if (character.isSurrogate() || changesTheTerminal(character)) {
            result += numbered(character.unicode());
        } else {
            result += character;
        }
    }
    return result;
}

} // namespace

QString printed(const QString &name)
{
    return escaped(cut(name, LongestName));
}

QString printedMessage(const QString &message)
{
    const QLatin1Char quote('\'');
    QStringList pieces = Confinement::withRelativePaths(message).split(quote);
    for (int i = 1; i + 1 < pieces.size(); ++i)
        pieces[i] = cut(pieces.at(i), LongestName);
    return escaped(cut(pieces.join(quote), LongestMessage));
}

} // namespace Halvard::Orv::Cli
