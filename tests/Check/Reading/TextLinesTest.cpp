#include "Reading/TextLines.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QTextCodec>

#include <string>
#include <tuple>
#include <vector>

namespace {

using Halvard::Orv::Checking::TextLine;
using Halvard::Orv::Checking::TextLines;

/// Number, offset, text and line end.
using Line = std::tuple<qint64, qint64, std::string, std::string>;

std::vector<Line> linesOf(const QByteArray &bytes, const TextLines::Limits &limits = {})
{
    QBuffer device;
    device.setData(bytes);
    EXPECT_TRUE(device.open(QIODevice::ReadOnly | QIODevice::Text));
    TextLines lines(device, limits);
    std::vector<Line> found;
    TextLine line;
    while (lines.next(line))
        found.emplace_back(line.number, line.offset, std::string(line.begin, line.end),
                           std::string(line.end, line.next));
    return found;
}

TextLines::Limits smallChunks(size_t bytes)
{
    TextLines::Limits limits;
    limits.chunkBytes = bytes;
    return limits;
}

TEST(TextLines, EndAtLineFeedsWhereverChunksEnd)
{
    const QByteArray text = "v 1\n\nf 2\r\n#\rx\r\r\nlast";
    const std::vector<Line> expected{{1, 0, "v 1", "\n"},
                                     {2, 4, "", "\n"},
                                     {3, 5, "f 2", "\r\n"},
                                     {4, 10, "#\rx", "\r\r\n"},
                                     {5, 16, "last", ""}};
    for (size_t chunk = 1; chunk <= static_cast<size_t>(text.size()) + 1; ++chunk)
        EXPECT_EQ(linesOf(text, smallChunks(chunk)), expected) << chunk << " bytes at a time";
}

TEST(TextLines, AreNoneInAnEmptyFile)
{
    EXPECT_TRUE(linesOf("").empty());
    EXPECT_EQ(linesOf("\n"), (std::vector<Line>{{1, 0, "", "\n"}}));
}

TEST(TextLines, LeaveTheMarkOfUTF8Out)
{
    EXPECT_EQ(linesOf("\xef\xbb\xbfv\nf"), (std::vector<Line>{{1, 0, "v", "\n"}, {2, 2, "f", ""}}));
}

/// What begins a character in UTF-8 and does not end it is dropped at the end of a file, as by a
/// decoder; what begins nothing is replaced, and stays.
TEST(TextLines, DropWhatADecoderWaitsWithAtTheEnd)
{
    const auto *const codec = QTextCodec::codecForName("UTF-8");
    std::vector<QByteArray> ends;
    for (int first = 0x80; first <= 0xff; ++first) {
        ends.push_back(QByteArray(1, static_cast<char>(first)));
        for (const int second : {0x78, 0x80, 0xbf, 0xc3, 0xfe}) {
            ends.push_back(ends.back().left(1) + static_cast<char>(second));
            for (const int third : {0x78, 0x80, 0xe2})
                ends.push_back(ends.back().left(2) + static_cast<char>(third));
        }
    }
    for (const QByteArray &end : ends) {
        QTextCodec::ConverterState ofAll(QTextCodec::IgnoreHeader);
        QTextCodec::ConverterState ofLine(QTextCodec::IgnoreHeader);
        const QByteArray text = "name" + end;
        // With a blank, which breaks off what the byte that was dropped broke off.
        const std::string line = std::get<2>(linesOf(text).at(0)) + ' ';
        EXPECT_EQ(codec->toUnicode(line.data(), static_cast<int>(line.size()), &ofLine),
                  codec->toUnicode(text.data(), text.size(), &ofAll) + QLatin1Char(' '))
            << text.toPercentEncoding().toStdString();
    }
}

/// The letter e with an acute accent, and a character beyond 16 bits, which takes two of them.
const QString Text = QString::fromUtf8("# caf\u00e9 \U0001F600\nv 1 2 3\n");

/// The text with a mark in units of `bytes` bytes, the least significant byte first or last.
template <typename Units>
QByteArray encoded(const Units &units, int bytes, bool isLittleEndian)
{
    QByteArray result;
    const auto append = [&](quint32 unit) {
        for (int i = 0; i < bytes; ++i)
            result += static_cast<char>(unit >> 8 * (isLittleEndian ? i : bytes - 1 - i));
    };
    append(QChar::ByteOrderMark);
    for (const auto unit : units)
        append(unit);
    return result;
}

TEST(TextLines, TurnMarkedEncodingsIntoUTF8WhereverChunksEnd)
{
    std::vector<quint32> utf16;
    for (const QChar unit : Text)
        utf16.push_back(unit.unicode());
    const struct
    {
        const char *name;
        QByteArray bytes;
    } cases[] = {
        {"UTF-16LE", encoded(utf16, 2, true)},
        {"UTF-16BE", encoded(utf16, 2, false)},
        {"UTF-32LE", encoded(Text.toUcs4(), 4, true)},
        {"UTF-32BE", encoded(Text.toUcs4(), 4, false)},
    };
    const std::vector<Line> expected{{1, 0, "# caf\u00e9 \U0001F600", "\n"},
                                     {2, 13, "v 1 2 3", "\n"}};
    for (const auto &test : cases) {
        for (const size_t chunk : {1, 2, 3, 5, 7, 100})
            EXPECT_EQ(linesOf(test.bytes, smallChunks(chunk)), expected)
                << test.name << ", " << chunk << " bytes at a time";
    }
}

TEST(TextLines, SayWhatTheyTurnIntoUTF8)
{
    QBuffer device;
    device.setData("\xff\xfev\0", 4);
    ASSERT_TRUE(device.open(QIODevice::ReadOnly));
    const TextLines lines(device);
    EXPECT_EQ(lines.transcodedFrom(), "UTF-16LE");
    EXPECT_EQ(lines.markBytes(), 2);
    EXPECT_TRUE(lines.isUTF8());
}

TEST(TextLines, StopAtALineBeyondTheLimit)
{
    TextLines::Limits limits = smallChunks(8);
    limits.lineBytes = 32;
    QBuffer device;
    device.setData("v 1\n" + QByteArray(50, '#') + "\nf\n");
    ASSERT_TRUE(device.open(QIODevice::ReadOnly));
    TextLines lines(device, limits);
    TextLine line;
    EXPECT_TRUE(lines.next(line));
    EXPECT_FALSE(lines.lineTooLong());
    EXPECT_FALSE(lines.next(line));
    EXPECT_TRUE(lines.lineTooLong());
    EXPECT_FALSE(lines.next(line));
}

} // namespace
