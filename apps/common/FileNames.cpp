#include "FileNames.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTextCodec>

#include <algorithm>
#include <climits>

#include <unistd.h>

namespace Halvard::Orv::Apps {

namespace {

constexpr ushort FirstByte = 0xdc00; // stands for the byte 0

bool standsForAByte(QChar character)
{
    return character.unicode() >= FirstByte + 0x80 && character.unicode() <= FirstByte + 0xff;
}

/// A text that the codec writes as these very bytes; null where there is none.
QString exactText(const QTextCodec &codec, const QByteArray &bytes)
{
    const QString text = codec.toUnicode(bytes);
    return codec.canEncode(text) && codec.fromUnicode(text) == bytes ? text : QString();
}

QString nameOf(const QTextCodec &codec, const QByteArray &bytes)
{
    constexpr int LongestCharacter = 4;
    QString text = exactText(codec, bytes);
    if (!text.isEmpty())
        return text;
    for (int at = 0; at < bytes.size();) {
        QString character;
        int length = 0;
        while (character.isEmpty() && length < std::min(LongestCharacter, bytes.size() - at))
            character = exactText(codec, bytes.mid(at, ++length));
        if (character.isEmpty()) {
            length = 1;
            character = QChar(ushort(FirstByte + uchar(bytes.at(at))));
        }
        text += character;
        at += length;
    }
    return text;
}

/// The locale's codec, which in addition writes the characters that stand for bytes.
class FileNameCodec : public QTextCodec
{
public:
    explicit FileNameCodec(QTextCodec &locale) : _locale(locale) {}

    QByteArray name() const override { return _locale.name(); }
    int mibEnum() const override { return _locale.mibEnum(); }

protected:
    /// Texts are read in pieces, with a state; names are not.
    QString convertToUnicode(const char *bytes, int count, ConverterState *state) const override
    {
        return state ? _locale.toUnicode(bytes, count, state)
                     : nameOf(_locale, QByteArray(bytes, count));
    }

    QByteArray convertFromUnicode(const QChar *text, int count,
                                  ConverterState *state) const override
    {
        QByteArray bytes;
        const QChar *const end = text + count;
        while (text < end) {
            const QChar *const run = text;
            // The second half of a pair looks the same, and belongs to the first.
            while (text < end && !standsForAByte(*text))
                text += text->isHighSurrogate() && text + 1 < end ? 2 : 1;
            bytes += _locale.fromUnicode(run, int(text - run), state);
            for (; text < end && standsForAByte(*text); ++text)
                bytes += char(text->unicode() - FirstByte);
        }
        return bytes;
    }

private:
    QTextCodec &_locale;
};

} // namespace

QStringList argumentsOf(int argc, char *argv[])
{
    QTextCodec *const locale = QTextCodec::codecForLocale();
    const auto isText = [locale](const QByteArray &bytes) {
        return bytes.isEmpty() || !exactText(*locale, bytes).isEmpty();
    };
    QStringList arguments;
    char directory[PATH_MAX];
    bool isPlain = !::getcwd(directory, sizeof directory) || isText(directory);
    for (int i = 0; i < argc; ++i) {
        isPlain = isPlain && isText(argv[i]);
        arguments += nameOf(*locale, argv[i]);
    }
    if (!isPlain)
        QTextCodec::setCodecForLocale(new FileNameCodec(*locale)); // Qt owns it
    return arguments;
}

} // namespace Halvard::Orv::Apps
