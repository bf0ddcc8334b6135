// Each line means to a check what it means to the loader's line reader.
#include "Reading/OBJLines.h"

#include "reference/ModelGenerator.h"

#include <OrvModel/OBJReader.h>

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QTextCodec>
#include <QtCore/QTextStream>

#include <cstring>
#include <sstream>

namespace {

using Halvard::Orv::OBJReader;
using namespace Halvard::Orv::Checking;

std::string bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    std::ostringstream text;
    text << std::hex << bits;
    return text.str();
}

std::string described(const char *keyword, const std::vector<float> &values)
{
    std::string text = keyword;
    for (const float value : values)
        text += ' ' + bitsOf(value);
    return text;
}

/// One line for each that the library's reader stops at, with its values to the bit.
std::vector<std::string> byOBJReader(const QByteArray &bytes)
{
    QBuffer device;
    device.setData(bytes);
    EXPECT_TRUE(device.open(QIODevice::ReadOnly | QIODevice::Text));
    QTextStream stream(&device);
    OBJReader reader(stream);
    std::vector<std::string> lines;
    for (; reader.valid(); reader.next()) {
        const bool isRead = reader.parseLine();
        const auto &xyz = reader.getV();
        std::ostringstream face;
        switch (reader.getLineType()) {
        case OBJReader::LINE_V:
            lines.push_back(described("v", {xyz[0], xyz[1], xyz[2]}));
            break;
        case OBJReader::LINE_VN:
            lines.push_back(described("vn", {xyz[0], xyz[1], xyz[2]}));
            break;
        case OBJReader::LINE_VT:
            lines.push_back(described("vt", {xyz[0], xyz[1]}));
            break;
        case OBJReader::LINE_F:
            face << "f";
            for (int i = 0; isRead && i < reader.getNumVertices(); ++i) {
                const OBJReader::Vertex corner = reader.getVertex(i);
                face << ' ' << corner.v << '/' << corner.vt << '/' << corner.vn;
            }
            lines.push_back(isRead ? face.str() : "f unreadable");
            break;
        case OBJReader::LINE_USEMTL:
            lines.push_back("usemtl " + reader.getUsemtlName().toStdString());
            break;
        default:
            lines.emplace_back("mtllib");
        }
    }
    return lines;
}

std::string describedValues(const char *keyword, const OBJLines &lines, int count)
{
    std::vector<float> values(static_cast<size_t>(count));
    std::vector<float> oneByOne;
    const bool isPlain = lines.readPlainValues(count, values.data());
    for (int i = 0; i < count; ++i)
        oneByOne.push_back(readNumber(lines.tokens(), i + 1).value);
    const std::string text = described(keyword, oneByOne);
    if (isPlain) {
        EXPECT_EQ(described(keyword, values), text);
    }
    return text;
}

std::string describedFace(OBJLines &lines)
{
    if (!lines.readCorners())
        return "f unreadable";
    std::ostringstream face;
    face << "f";
    for (const Corner &corner : lines.corners())
        face << ' ' << corner.v << '/' << corner.vt << '/' << corner.vn;
    return face.str();
}

/// The same by the lines of a check.
std::vector<std::string> byOBJLines(const QByteArray &bytes)
{
    QBuffer device;
    device.setData(bytes);
    EXPECT_TRUE(device.open(QIODevice::ReadOnly));
    OBJLines lines(device);
    std::vector<std::string> found;
    while (lines.next()) {
        switch (lines.kind()) {
        case OBJLineKind::Position:
            found.push_back(describedValues("v", lines, 3));
            break;
        case OBJLineKind::Normal:
            found.push_back(describedValues("vn", lines, 3));
            break;
        case OBJLineKind::TexCoord:
            found.push_back(describedValues("vt", lines, 2));
            break;
        case OBJLineKind::Face:
            found.push_back(describedFace(lines));
            break;
        case OBJLineKind::Material:
            found.push_back("usemtl " + lines.tokens().text(1).toStdString());
            break;
        case OBJLineKind::Library:
            found.emplace_back("mtllib");
            break;
        case OBJLineKind::Nothing:
        case OBJLineKind::Other:
            break;
        }
    }
    return found;
}

TEST(OBJLines, MeanWhatTheyMeanToTheLibrarysReader)
{
    const struct
    {
        const char *name;
        QByteArray text;
    } cases[] = {
        {"an empty file", ""},
        {"blanks and comments", "\n  \n# v 1 2 3\n\t#\n#v\n"},
        {"other keywords", "V 1 2 3\nvp 1 2\nvv\no v\nl 1 2\n"},
        {"numbers of all kinds", "v 1 -2 3.5\nv .5 5. -0\nv 1e3 -1E-3 +1\nv 0x1 1,5 inf\n"
                                 "v 3.4028235e38 1e39 1e-46\nvn nan -nan 1e400\n"
                                 "vt 0.1 123456789012345678\nv 000000000000000000001 1 -.\n"},
        {"missing values", "v\nv 1\nv 1 2\nvt\nvn 1 2 # 3\nv 1 2 3 4 5 6\n"},
        {"faces", "v 1 2 3\nvt 1 2\nvn 1 2 3\nf 1 2 3\nf 1/1 2/2 3/3\nf 1//1 2//2\nf 1/1/1/1\n"
                  "f -1/-1/-1\nf 0/0/0\nf\nf # 1\nf 1 2 #3\nf 1 2#3\nf 1/ 2// 3/1/\nf /1\nf 1/x\n"},
        {"indices of all kinds", "f 2147483647 2147483648\nf 2147483647\nf -2147483648\nf +5 007\n"
                                 "f 5.0\nf 1234567890 0000000001\nf --1\nf -\nf -0\n"},
        {"carriage returns", "v 1 2\r3 4\r\nf 1 2 3\r\r\nf 1/\r/2\n\rv 1 2 3 \r\nf\r 1\nv\r\n"},
        {"blanks that are not ASCII", "v\u00a01\u20032\u30003\nv 1\u00852 3\nv\v1\f2 3\n"
                                      "f\u20281\u20292\u202f3\u205f4\u16805\n"},
        {"digits and signs that are not ASCII", "v \u22121 \u0661 \uff11\nf \u06611 2 3\n"},
        {"bytes that are no UTF-8", "usemtl a\xe4k\nusemtl \xff\xfe\nv 1\xc2\xa0 2 3\nv 1\xc2 2 3\n"
                                    "usemtl \xf0\x9f\x98 x\nusemtl \xe2\xc2\xa0y\n"},
        {"an incomplete sequence at the end", "usemtl a\xe2\x82"},
        {"an incomplete sequence before the end", "usemtl a\xe2\x82\n"},
        {"zero bytes", QByteArray("v 1\0 2 3\nf 1\0 2\nusemtl a\0b\n", 28)},
        {"a mark", "\xef\xbb\xbfv 1 2 3\nv 4 5 6\n"},
        {"a mark elsewhere", "v 1 2 3\n\xef\xbb\xbfv 4 5 6\n"},
    };
    for (const auto &test : cases)
        EXPECT_EQ(byOBJLines(test.text), byOBJReader(test.text)) << test.name;
}

TEST(OBJLines, MeanTheSameInRandomModels)
{
    constexpr quint32 Models = 3000;
    for (quint32 seed = 1; seed <= Models && !HasFailure(); ++seed) {
        const OrvReference::ModelFiles model = OrvReference::generateModel(seed);
        if (!model.localeCodec.isEmpty())
            QTextCodec::setCodecForLocale(QTextCodec::codecForName(model.localeCodec));
        EXPECT_EQ(byOBJLines(model.files.front().contents),
                  byOBJReader(model.files.front().contents))
            << "seed " << seed << '\n'
            << OrvReference::printable(model);
        QTextCodec::setCodecForLocale(nullptr);
    }
}

TEST(OBJLines, KnowWhereTheirTokensAre)
{
    QBuffer device;
    device.setData("# x\n  usemtl\t caf\u00e9 \r\n");
    ASSERT_TRUE(device.open(QIODevice::ReadOnly));
    OBJLines lines(device);
    ASSERT_TRUE(lines.next());
    EXPECT_EQ(lines.kind(), OBJLineKind::Nothing);
    ASSERT_TRUE(lines.next());
    EXPECT_EQ(lines.line().number, 2);
    EXPECT_EQ(lines.line().offset, 4);
    ASSERT_EQ(lines.tokens().size(), 2);
    EXPECT_EQ(lines.tokens()[0].begin - lines.line().begin, 2);
    EXPECT_EQ(lines.tokens()[1].begin - lines.line().begin, 10);
    EXPECT_EQ(lines.tokens()[1].size(), 5u); // the accent takes two bytes
    EXPECT_FALSE(lines.tokens()[1].isPlain);
    EXPECT_FALSE(lines.next());
}

TEST(OBJLines, AreContinuedByABackslashAtTheEnd)
{
    QBuffer device;
    device.setData("f 1 2 \\\n3\n# not this \\\nv 1 2 3\\ \nv 1 \\ 2\n");
    ASSERT_TRUE(device.open(QIODevice::ReadOnly));
    OBJLines lines(device);
    std::vector<std::pair<bool, bool>> found;
    while (lines.next())
        found.emplace_back(lines.isContinued(), lines.continuesAnother());
    EXPECT_EQ(found,
              (std::vector<std::pair<bool, bool>>{
                  {true, false}, {false, true}, {false, false}, {true, false}, {false, true}}));
}

} // namespace
