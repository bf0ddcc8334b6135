#include <OrvCheck/ModelCheck.h>

namespace Halvard::Orv {

namespace {

/// Whether a character would change how the text around it is shown, or where a line ends.
bool isUnprintable(ushort character)
{
    return character < 0x20 || (character >= 0x7F && character <= 0x9F) || character == 0x061C ||
           character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069) || character == 0xFEFF;
}

QString escaped(ushort character)
{
    return character < 0x100 ? QStringLiteral("\\x%1").arg(character, 2, 16, QLatin1Char('0'))
                             : QStringLiteral("\\u{%1}").arg(character, 4, 16, QLatin1Char('0'));
}

} // namespace

QString printableText(const QString &text, int maxLength)
{
    int length = text.size();
    const bool isCut = maxLength > 0 && length > maxLength;
    if (isCut)
        length = text.at(maxLength - 1).isHighSurrogate() ? maxLength - 1 : maxLength;
    QString printable;
    printable.reserve(length);
    for (int i = 0; i < length; ++i) {
        const ushort character = text.at(i).unicode();
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < length && text.at(i + 1).isLowSurrogate();
        if (isPair) {
            printable += text.at(i);
            printable += text.at(++i);
        } else if (text.at(i).isLowSurrogate()) {
            printable += escaped(character & 0xff);
        } else if (text.at(i).isHighSurrogate() || isUnprintable(character)) {
            printable += escaped(character);
        } else {
            printable += text.at(i);
        }
    }
    return isCut ? printable + QStringLiteral("...") : printable;
}

} // namespace Halvard::Orv
