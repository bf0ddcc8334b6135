// Lines decoded one at a time against QTextStream, which decodes the file.
#include "Scanning/LineDecoding.h"

#include "support/QtPrinting.h"
#include "support/RandomRings.h"
#include "support/ScopedLocaleCodec.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QStringList>
#include <QtCore/QTextStream>

#include <string>
#include <vector>

namespace OrvTest {
namespace {

using Halvard::Orv::LineDecoder;

QStringList linesOfStream(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    EXPECT_TRUE(buffer.open(QIODevice::ReadOnly | QIODevice::Text));
    QTextStream stream(&buffer);
    QStringList lines;
    while (!stream.atEnd())
        lines.append(stream.readLine());
    return lines;
}

struct DecodedLine
{
    bool isSure;
    QString text;
};

std::vector<DecodedLine> linesOfDecoder(const QByteArray &bytes)
{
    LineDecoder decoder;
    EXPECT_TRUE(decoder.start(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    std::vector<DecodedLine> lines;
    int begin = static_cast<int>(decoder.markBytes());
    while (begin < bytes.size()) {
        const int feed = bytes.indexOf('\n', begin);
        const int end = feed < 0 ? bytes.size() : feed + 1;
        DecodedLine line{};
        line.isSure =
            decoder.decode(bytes.constData() + begin, bytes.constData() + end, begin, line.text);
        lines.push_back(line);
        begin = end;
    }
    return lines;
}

/// Returns how many lines the decoder left undecided.
int expectSameLines(const QByteArray &bytes, const std::string &what)
{
    const std::vector<DecodedLine> decoded = linesOfDecoder(bytes);
    QStringList expected = linesOfStream(bytes);
    // A last line of nothing but carriage returns, or of a broken sequence, is none
    // to the stream. As an empty line it does not count either.
    while (expected.size() < static_cast<int>(decoded.size()))
        expected.append(QString());
    int unsure = 0;
    EXPECT_EQ(expected.size(), static_cast<int>(decoded.size())) << what;
    for (std::size_t i = 0; i < decoded.size(); ++i) {
        if (!decoded[i].isSure)
            ++unsure;
        else if (decoded[i].text != expected[static_cast<int>(i)])
            ADD_FAILURE() << what << ", line " << i << ": '" << decoded[i].text.toStdString()
                          << "' is '" << expected[static_cast<int>(i)].toStdString() << "'";
    }
    return unsure;
}

/// Sound and broken pieces of UTF-8, line ends and letters.
QByteArray randomText(Dice &dice, int pieces)
{
    const QByteArray snippets[] = {"a",
                                   "v 1 2 3",
                                   "\n",
                                   "\r\n",
                                   "\r",
                                   "\xc3\xa4",
                                   "\xe2\x82\xac",
                                   "\xf0\x9f\x98\x80",
                                   "\xc3",
                                   "\xe2\x82",
                                   "\xf0\x9f\x98",
                                   "\xf0\x9f",
                                   "\x80",
                                   "\xff",
                                   "\xed\xa0\x80",
                                   "\xc0\xaf",
                                   "\xf4\x90\x80\x80",
                                   QByteArray(1, '\0'),
                                   "\xc2\x85",
                                   "\xe2\x80\xa8",
                                   "\v",
                                   "\x1a"};
    QByteArray text;
    for (int i = 0; i < pieces; ++i)
        text += snippets[dice.below(static_cast<int>(std::size(snippets)))];
    return text;
}

TEST(LineDecoding, DecodesAsTheStreamDoes)
{
    for (const char *codec : {"UTF-8", "ISO-8859-1", "ISO-8859-15", "US-ASCII", "windows-1252",
                              "windows-1255", "KOI8-R"}) {
        const ScopedLocaleCodec locale(codec);
        Dice dice(11);
        for (int i = 0; i < 300; ++i)
            EXPECT_EQ(expectSameLines(randomText(dice, dice.below(60)), codec), 0);
    }
}

TEST(LineDecoding, DecodesAcrossThePiecesOfTheStream)
{
    const ScopedLocaleCodec locale("UTF-8");
    Dice dice(12);
    for (int i = 0; i < 400; ++i) {
        const int pieces = static_cast<int>(LineDecoder::PieceBytes) * dice.between(1, 2);
        QByteArray text(pieces - dice.below(40), dice.oneIn(2) ? 'x' : ' ');
        text += dice.oneIn(2) ? "\n" : "";
        text += randomText(dice, 60);
        EXPECT_EQ(expectSameLines(text, "round " + std::to_string(i)), 0);
    }
}

/// At the begin of a piece the stream may swallow it, depending on all the text
/// before; elsewhere it never does.
TEST(LineDecoding, LeavesMarksAtTheBorderOfPiecesUndecided)
{
    const ScopedLocaleCodec locale("UTF-8");
    const QByteArray mark = "\xef\xbb\xbf";
    for (const char *before : {"", "\xc3\xa4\n", "\xef\xbb\xbf", "\xff\n"}) {
        for (int distance = -8; distance <= 8; ++distance) {
            const QByteArray head = before;
            const int padding = static_cast<int>(LineDecoder::PieceBytes) + distance - head.size();
            const QByteArray text =
                head + QByteArray(padding - 1, 'x') + "\n" + mark + "v 1\nv 2\n";
            const int unsure = expectSameLines(text, std::to_string(distance));
            EXPECT_EQ(unsure, distance <= 0 && distance > -7 ? 1 : 0) << distance;
        }
    }
}

TEST(LineDecoding, MarksAtTheBorderAreUndecidedForAReason)
{
    const ScopedLocaleCodec locale("UTF-8");
    const auto lastLine = [](const QByteArray &head) {
        const int padding = static_cast<int>(LineDecoder::PieceBytes) - head.size() - 1;
        return linesOfStream(head + QByteArray(padding, 'x') + "\n\xef\xbb\xbfv 1\n").last();
    };
    EXPECT_EQ(lastLine(""), QStringLiteral("v 1"));
    EXPECT_EQ(lastLine("\xc3\xa4\n"), QChar(QChar::ByteOrderMark) + QStringLiteral("v 1"));
}

TEST(LineDecoding, TakesAMarkForTheCodec)
{
    const ScopedLocaleCodec locale("ISO-8859-1");
    const QByteArray text = "\xef\xbb\xbfv \xc3\xa4\nv \xc3\xb6\n";
    LineDecoder decoder;
    ASSERT_TRUE(decoder.start(text.constData(), static_cast<std::size_t>(text.size())));
    EXPECT_EQ(decoder.markBytes(), 3u);
    EXPECT_EQ(expectSameLines(text, "marked"), 0);
    ASSERT_TRUE(decoder.start(text.constData() + 3, 4));
    EXPECT_EQ(decoder.markBytes(), 0u);
}

TEST(LineDecoding, RefusesOtherCodecs)
{
    const struct
    {
        const char *name;
        QByteArray begin;
    } marked[] = {
        {"UTF-16, little-endian", QByteArray("\xff\xfev\0", 4)},
        {"UTF-16, little-endian, cut", QByteArray("\xff\xfe\n", 3)},
        {"UTF-16, big-endian", QByteArray("\xfe\xff\0v", 4)},
        {"UTF-32, little-endian", QByteArray("\xff\xfe\0\0", 4)},
        {"UTF-32, big-endian", QByteArray("\0\0\xfe\xff", 4)},
    };
    for (const auto &row : marked) {
        LineDecoder decoder;
        EXPECT_FALSE(
            decoder.start(row.begin.constData(), static_cast<std::size_t>(row.begin.size())))
            << row.name;
    }
    for (const char *codec :
         {"Shift_JIS", "GBK", "GB18030", "EUC-JP", "EUC-KR", "Big5", "UTF-16", "ISO-2022-JP"}) {
        const ScopedLocaleCodec locale(codec);
        LineDecoder decoder;
        EXPECT_FALSE(decoder.start("v 1 2 3\n", 8)) << codec;
    }
}

} // namespace
} // namespace OrvTest
