// OBJ files as bytes against the same files line by line.
#include "support/OBJTokenCases.h"
#include "support/QtPrinting.h"
#include "support/ReadOBJ.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QTextCodec>

#include <set>
#include <string>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;
using ::testing::IsEmpty;
using namespace std::string_literals;

QByteArray bytesOf(const std::string &text)
{
    return QByteArray(text.data(), static_cast<int>(text.size()));
}

/// The text is read as bytes, in chunks of several sizes, and gives the same as
/// line by line.
void expectSame(const std::string &name, const QByteArray &text)
{
    const ReadOBJ lines = readByLines(text);
    for (const std::size_t chunkBytes : {1u << 18, 1u, 2u, 7u, 64u}) {
        OBJScanLimits limits;
        limits.chunkBytes = chunkBytes;
        const ReadOBJ bytes = readAsBytes(text, limits);
        EXPECT_THAT(differences(lines, bytes), IsEmpty())
            << name << ", chunks of " << chunkBytes << ":\n"
            << printable(text);
    }
}

struct TextCase
{
    const char *name;
    std::string text;
};

/// Ten values of each kind, so that faces have something to refer to.
const std::string Values = [] {
    std::string text;
    for (int i = 0; i < 10; ++i)
        text += "v " + std::to_string(i) + ".5 -1 2\nvt 0." + std::to_string(i) + " 1\nvn 0 1 0\n";
    return text;
}();

const TextCase ValueLineCases[] = {
    {"empty file", ""},
    {"blank lines only", "\n\n \n\t\n\r\n \r\n"},
    {"a line feed short", "v 1 2 3"},
    {"a line feed short, with a blank", "v 1 2 3 "},
    {"a line feed short, in a number", "v 1 2 3.5\nv 1 2 3."},
    {"a line feed short, after a keyword", "v 1 2 3\nv"},
    {"carriage return at the end of the file", "v 1 2 3\r"},
    {"comment at the end of the file", "v 1 2 3\n# end"},
    {"fixed decimals", "v -0.037830 0.127940 0.004475\nv -0.044779 0.128887 0.001905\n"},
    {"six significant digits", "v 0.348799 -0.334989 -0.0832331\nv 1e-06 15.3644 -1.47466\n"},
    {"whole numbers", "v 1 2 3\nv -1 -20 300\nv 0 -0 00\n"},
    {"whole and not", "v 1 2.5 3\nv 1.5 2 3.25\nv 1.5 2.5 3\n"},
    {"points without digits", "v .5 1 2\nv 5. 1 2\nv -.5 -5. 2\nv . -. 2\nv 1 2 .\nv 1 2 -\n"},
    {"14, 15, 16 and 17 digits", "v 0.1234567890123 0.12345678901234 0.123456789012345\n"
                                 "v 0.1234567890123456 1.2345678901234567 12345678901234567\n"
                                 "v -0.1234567890123 -0.12345678901234 -0.123456789012345\n"
                                 "v 12345678901234 123456789012345 1234567890123456\n"
                                 "v -12345678901234 -123456789012345 -1234567890123456\n"
                                 "v 99999999999999 999999999999999 9999999999999999\n"},
    {"leading zeros", "v 00000000000001.5 000000000000001.5 0000000000000001.5\n"},
    {"exponents", "v 1e5 1E-5 -1.5e+3\nv 1e38 1e39 -1e39\nv 1e-45 1e-46 -1e-46\n"},
    {"two spaces before numbers", "v  1 2 3\nv  -1  -2  -3\nv 1  2  3\nvt  1  2\nvn  1  2  3\n"},
    {"three spaces", "v   1 2 3\nv 1   2 3\nv 1 2   3\n"},
    {"40 spaces", "v " + std::string(40, ' ') + "1 2 3\nv 1 2 " + std::string(40, ' ') + "3\n"},
    {"70 spaces", "v " + std::string(70, ' ') + "1 2 3\nv 1 2 " + std::string(70, ' ') + "3\n"},
    {"tabs", "v\t1\t2\t3\nv 1\t2 3\nv 1 2\t3\t\n"},
    {"vertical tabs and form feeds", "v\v1\f2\v3\nv 1 2 3\v4\n\fv 5 6 7\n\v#v 1 2 3\n"},
    {"blanks before the keyword", " v 1 2 3\n\tv 4 5 6\n   vn 1 2 3\n\t\tvt 1 2\n"},
    {"blanks at the end", "v 1 2 3 \nv 4 5 6\t\nv 7 8 9  \t \nvt 1 2 \n"},
    {"colours", "v 1 2 3 0.5 0.5 0.5\nv 1 2 3 255 0 0\nv 4 5 6 x\n"},
    {"weights", "v 1 2 3 1.0\nvt 0.5 0.25 0.75\nvt 1 2 0\nvn 1 2 3 4\n"},
    {"one number missing", "v 1 2\nvt 1\nvn 1 2\nv 1 2 \nv 4 5 6\n"},
    {"all numbers missing", "v\nvt\nvn\nv \nvt \nvn \nv 1\n"},
    {"words", "v a b c\nv 1 b 3\nv 1 2 3x\nv 1x 2 3\nv 1 x2 3\nv nan inf -inf\n"},
    {"signs", "v +1 +2.5 -+3\nv --1 +-2 -\nv + - 1\nv 1- 2- 3-\nv -1-2 3 4\n"},
    {"points", "v 1.2.3 4..5 6.\nv 1. .2 .\n"},
    {"commas", "v 1,2,3\nv 1, 2, 3\nv 1,5 2 3\n"},
    {"a comment behind the numbers", "v 1 2 3#c\nv 1 2 3 #c\nv 1 2#c 3\nv 1 # 3\n"},
    {"slashes", "v 1/2/3 4 5\nv / 1 2\n"},
    {"other keywords", "vp 1 2 3\nV 1 2 3\nvv 1 2 3\nvnx 1 2 3\nv1 2 3\nv-1 2 3\nvt1 2\n"
                       "o v 1 2 3\ng a\ns 1\nl 1 2\n"},
    {"zero bytes", "v 1 2 3\0\nv\0 1 2 3\nv 1\0 2 3\n\0v 1 2 3\n\0\nv 4 5 6\n"s},
    {"control characters", "v 1 2\001 3\nv\037 1 2 3\n\177v 1 2 3\nv 4 5\0346 7\n"},
    {"a long number", "v " + std::string(5000, '1') + " 2 0." + std::string(5000, '3') + "\n"},
    {"a long word", "v " + std::string(5000, 'x') + " 2 3\n"},
    {"a long line", "v 1 2 3 " + std::string(100000, '4') + "\nv 5 6 7\n"},
    {"a long comment", "#" + std::string(100000, 'x') + "\nv 5 6 7\n"},
};

TEST(OBJScanning, ReadsValueLinesAsTheLineReaderDoes)
{
    for (const TextCase &row : ValueLineCases)
        expectSame(row.name, bytesOf(row.text));
}

const TextCase FaceLineCases[] = {
    {"triangle", "f 1 2 3\n"},
    {"quad", "f 1 2 3 4\n"},
    {"triangles and quads", "f 1 2 3\nf 1 2 3 4\nf 2 3 4\nf 4 3 2 1\n"},
    {"texture coordinates", "f 1/2 2/3 3/4\nf 1/1 2/2 3/3 4/4\n"},
    {"normals", "f 1//2 2//3 3//4\nf 1//1 2//2 3//3 4//4\n"},
    {"all three", "f 1/2/3 4/5/6 7/8/9\nf 1/2/3 4/5/6 7/8/9 10/1/2\n"},
    {"forms in turn", "f 1 2 3\nf 1/2 2/3 3/4\nf 1//2 2//3 3//4\nf 1/2/3 4/5/6 7/8/9\nf 1 2 3\n"},
    {"forms within a face", "f 1 2/3 3//4 4/5/6\nf 1/2 2 3//4\nf 1/2/3 1/2 1\nf 1//2 1/2/3 1\n"},
    {"no corner, one, two", "f\nf 1\nf 1 2\nf \nf 1/2\nf 1//2 3//4\n"},
    {"five, six, seven, eight, nine", "f 1 2 3 4 5\nf 1 2 3 4 5 6\nf 1 2 3 4 5 6 7\n"
                                      "f 1 2 3 4 5 6 7 8\nf 1 2 3 4 5 6 7 8 9\n"},
    {"negative", "f -1 -2 -3\nf -1/-2/-3 -4/-5/-6 -7/-8/-9\nf -1//-1 -2//-2 3//3\nf -11 -12 -13\n"},
    {"negative, four and more", "f -1 -2 -3 -4\nf -1/-1 -2/-2 -3/-3 -4/-4 -5/-5\n"
                                "f -1//-1 -2//-2 -3//-3 -4//-4\nf -1/-1/-1 -2/-2/-2 -3/-3/-3 \n"},
    {"negative, then not", "f -1 -2 3\nf 1 -2 -3\nf -1/1 -2/2 -3/3\nf 1/-1 2/-2 3/-3\nf 1 2 3\n"},
    {"negative, far out", "f -99999999 -2 -3\nf -00000001 -2 -3\nf -000000001 -2 -3\n"},
    {"minus zero", "f -0 -1 -2\nf -1/-0/-1 -2/-1/-0 -0/-1/-1\nf -00 -000 -0\n"},
    {"zero", "f 0 0 0\nf 1/0 2/0/0 3//0\nf -0 1 2\nf 0/1 1/0 1/1\n"},
    {"leading zeros", "f 001 0002 00000003\nf 000000004 1 2\nf 00000000001 1 2\n"},
    {"eight and nine digits", "f 12345678 99999999 1\nf 123456789 1 2\nf 1 2 100000000\n"
                              "f 12345678/12345678/12345678 1/1/1 2/2/2\n"},
    {"the largest", "f 2147483647 1 2\nf 2147483648 1 2\nf -2147483648 1 2\nf -2147483649 1 2\n"
                    "f 4294967297 1 2\nf 99999999999999999999 1 2\n"},
    {"plus signs", "f +1 +2 +3\nf 1/+2 2/+3 3/+4\n"},
    {"decimals", "f 1.0 2 3\nf 1 2 3.\nf 1e0 2 3\n"},
    {"words drop the face", "f 1 2 x\nf x 2 3\nf 1 2 3x\nf 1/x 2/2 3/3\nf 1//x 2 3\nf 4 5 6\n"},
    {"bad corners after good ones", "f 1/2/3 2/3/4 3/4/5 4/5/6 5/6/7 x\nf 1 2 3\n"},
    {"empty components", "f 1/ 2/ 3/\nf 1// 2// 3//\nf 1//2/ 2//3/ 3//4/\nf /1 2 3\nf //1 2 3\n"
                         "f / 1 2\n"},
    {"four components", "f 1/2/3/4 2/3/4/5 3/4/5/6\nf 1/2/3/x 2 3\nf 1//// 2 3\n"},
    {"comments", "f 1 2 3 # 4\nf 1 2 3 #4\nf 1 2 3#4\nf # 1 2 3\nf 1 # 2\nf #\nf 1 2 3 4 # x\n"},
    {"blanks", "f  1  2  3\nf\t1\t2\t3\n f 1 2 3\nf 1 2 3 \nf 1 2 3 4  \nf 1/2 2/3 3/4 \n"
               "f 1\v2\f3\n"},
    {"60 spaces", "f 1 2 " + std::string(60, ' ') + "3\nf 1 2 3" + std::string(60, ' ') + "\n" +
                      "f " + std::string(60, ' ') + "1/2/3 4/5/6 7/8/9\n"},
    {"other keywords", "fo 1 2 3\nF 1 2 3\nf1 2 3\nf/ 1 2 3\n"},
    {"no line feed", "f 1 2 3"},
    {"no line feed after a slash", "f 1 2 3/"},
    {"zero bytes", "f 1 2 3\0\nf\0 1 2 3\nf 1 2\0 3\nf 4 5 6\n"s},
};

TEST(OBJScanning, ReadsFaceLinesAsTheLineReaderDoes)
{
    for (const TextCase &row : FaceLineCases) {
        expectSame(row.name, bytesOf(Values + row.text));
        expectSame(row.name + " before any value"s, bytesOf(row.text + Values));
        expectSame(row.name + " with positions only"s, bytesOf("v 1 2 3\nv 1 2 3\n" + row.text));
        expectSame(row.name + " with texture coordinates only"s, bytesOf("vt 1 2\n" + row.text));
    }
}

TEST(OBJScanning, ReadsLongFaces)
{
    const char *const corners[] = {" 1", " 1/2", " 1//3", " 1/2/3", " -1/-2/-3"};
    for (const int count : {62, 63, 64, 65, 66, 67, 253, 254, 255, 256, 257, 1000, 70000}) {
        for (const char *corner : corners) {
            std::string text = Values + "f 1 2 3\nf";
            for (int i = 0; i < count; ++i)
                text += corner;
            text += "\nf 4 5 6\nf";
            for (int i = 0; i < count; ++i)
                text += corner;
            text += " x\nf 7 8 9\n"; // drops the face with all of its corners
            const ReadOBJ bytes = readAsBytes(bytesOf(text));
            EXPECT_THAT(differences(readByLines(bytesOf(text)), bytes), IsEmpty())
                << count << corner;
            EXPECT_EQ(bytes.model.cornerCounts.size(), 4u);
        }
    }
}

TEST(OBJScanning, ReadsEveryNumberToken)
{
    for (const NumberCase &row : numberCases()) {
        const std::string &t = row.text;
        expectSame(row.name, bytesOf("v " + t + " 2 3\nv 1 " + t + " 3\nv 1 2 " + t + "\nv 1 2 " +
                                     t + " \nvt " + t + " " + t + "\nvn " + t + " 1 2\nv " + t +
                                     "\r\nv 1 2 " + t + "\r\nv 1 2 " + t));
    }
}

TEST(OBJScanning, ReadsEveryCornerToken)
{
    for (const CornerCase &row : cornerCases()) {
        const std::string &t = row.text;
        expectSame(row.name, bytesOf(Values + "f " + t + " 2 3\nf 1 2 " + t + "\nf 1/1/1 2/2/2 " +
                                     t + " 3/3/3\nf " + t + "\nf 1 2 " + t + " # c\nf 1 2 " + t));
    }
}

TEST(OBJScanning, TellsBlanksAsQtDoes)
{
    for (const BlankCase &row : blankCases()) {
        const std::string &b = row.text;
        expectSame(row.name, bytesOf("v" + b + "1 2 3\nv 1" + b + "2" + b + "3\nv 1 2 3" + b +
                                     "\nv 1 2 3" + b + "4\n" + b + "v 5 6 7\n" + b + "# c\n" + b +
                                     "\nf 1" + b + "1 1\nf 1 1 1" + b + "\nusemtl a" + b +
                                     "b\nf 1 1 1\nusemtl" + b + "c\n"));
    }
}

TEST(OBJScanning, TakesEveryCarriageReturnOut)
{
    const TextCase rows[] = {
        {"CR LF", "v 1 2 3\r\nvt 1 2\r\nvn 1 2 3\r\nf 1 2 3\r\nf 1/1 2/2 3/3\r\n\r\n# c\r\n"},
        {"blanks before CR LF", "v 1 2 3 \r\nf 1 2 3 \r\nf 1 2 3 4\t\r\n"},
        {"CR CR LF", "v 1 2 3\r\r\nvt 1 2\r\r\nf 1 2 3\r\r\nf 1/1/1 1/1/1 1/1/1\r\r\n\r\r\n"},
        {"CR alone", "v 1 2 3\rv 4 5 6\rf 1 2 3\r"},
        {"CR within numbers", "v 1\r2 3 4\nv 1 2 3\r4\nv \r1 2 3\nv 1 2 \r3\nv 1 -\r2 3\n"},
        {"CR within keywords", "v\r 1 2 3\nv\rn 1 2 3\n\rv 1 2 3\nus\remtl a\n#\r\nv 1\n\r#\n"},
        {"CR within corners", "f 1\r 2 3\nf 1 2 3\r4\nf 1/\r2 3 4\nf \r1 2 3\nf\r 1 2 3\n"},
        {"CR before a blank", "v 1 2 3\r \nf 1 2 3\r 4\nf 1 2 3 \r \n"},
        {"LF CR", "v 1 2 3\n\rv 4 5 6\n\rf 1 2 3\n\r"},
        {"many", "v 1 2 3" + std::string(5000, '\r') + "\nv 4 5" + std::string(5000, '\r') + "6\n"},
        {"only", std::string(5000, '\r')},
    };
    for (const TextCase &row : rows)
        expectSame(row.name, bytesOf(row.text));
}

TEST(OBJScanning, ReadsChunksOfAnySize)
{
    const QByteArray text =
        bytesOf(Values + "# comment\r\n\r\nvn 0.25 -1e-3 7\nusemtl <default>\n"
                         "f 1/2/3 4/5/6 7/8/9 10/1/2\nf 1 2 3\nf -1 2 x\n"
                         "v 1 2 3\xc3\xa4\nusemtl \xe2\x82\xac\nf 1//2 2//3 3//4");
    const ReadOBJ lines = readByLines(text);
    for (int chunkBytes = 1; chunkBytes < text.size() + 2; ++chunkBytes) {
        OBJScanLimits limits;
        limits.chunkBytes = static_cast<std::size_t>(chunkBytes);
        EXPECT_THAT(differences(lines, readAsBytes(text, limits)), IsEmpty()) << chunkBytes;
    }
}

/// Every text cut off anywhere.
TEST(OBJScanning, ReadsEveryPrefix)
{
    const QByteArray text =
        bytesOf("v 0.5 -1.25 1e3\r\nvt 1 .5\nvn 0 -1 0\nf 1/1/1 1/1/1 -1/-1/-1\n"
                "f 1//1 1//1 1//1 1//1 # c\nusemtl \xc3\xa4\nf 1 1 1\n");
    for (int size = 0; size <= text.size(); ++size)
        expectSame("prefix of " + std::to_string(size), text.left(size));
}

/// Text read at a file's end, and all of it, in one go.
TEST(OBJScanning, ReadsFilesLargerThanAChunk)
{
    std::string text = Values;
    while (text.size() < 3 * (1u << 18)) {
        text += "v 1." + std::to_string(text.size()) + " -2 3.25\nvt 0.5 1\nf 1/2 2/3 3/4\n";
        text += "f 1 2 3 4\n# some comment\nf -1/-1/-1 -2/-2/-2 -3/-3/-3\n";
    }
    const QByteArray bytes = bytesOf(text);
    EXPECT_THAT(differences(readByLines(bytes), readAsBytes(bytes)), IsEmpty());
}

TEST(OBJScanning, GroupsFacesByMaterial)
{
    const TemporaryModel model;
    model.write(QStringLiteral("ab.mtl"), "newmtl a\nKd 1 0 0\nnewmtl b\n");
    model.write(QStringLiteral("bc.mtl"), "newmtl b\nnewmtl c\nnewmtl \xc3\xa4\n");
    const TextCase rows[] = {
        {"default", "f 1 2 3\nf 1 2 3\n"},
        {"by name", "mtllib ab.mtl\nf 1 1 1\nusemtl a\nf 1 1 1\nf 1 1 1\nusemtl b\nf 1 1 1\n"},
        {"unknown", "mtllib ab.mtl\nusemtl x\nf 1 1 1\nusemtl a\nf 1 1 1\nusemtl y\nf 1 1 1\n"},
        {"back again", "mtllib ab.mtl\nusemtl a\nf 1 1 1\nusemtl b\nf 1 1 1\nusemtl a\nf 1 1 1\n"
                       "usemtl a\nf 1 1 1\nusemtl <default>\nf 1 1 1\n"},
        {"selected twice", "mtllib ab.mtl\nusemtl a\nf 1 1 1\nusemtl b\nusemtl a\nf 1 1 1\n"},
        {"library after its faces",
         "usemtl a\nf 1 1 1\nmtllib ab.mtl\nf 1 1 1\nusemtl a\nf 1 1 1\n"},
        {"library between", "mtllib ab.mtl\nusemtl c\nf 1 1 1\nmtllib bc.mtl\nf 1 1 1\n"},
        {"same library twice", "mtllib ab.mtl\nusemtl a\nf 1 1 1\nmtllib ab.mtl\nf 1 1 1\n"},
        {"no faces", "mtllib ab.mtl\nusemtl a\nusemtl b\n"},
        {"dropped faces", "mtllib ab.mtl\nusemtl a\nf x\nusemtl b\nf 1 1 1\nf x\n"},
        {"no name", "mtllib ab.mtl\nusemtl\nf 1 1 1\nusemtl \nf 1 1 1\nusemtl a\nf 1 1 1\n"},
        {"name is a comment", "mtllib ab.mtl\nusemtl #a\nf 1 1 1\nusemtl a #b\nf 1 1 1\n"},
        {"name and more", "mtllib ab.mtl bc.mtl\nusemtl a b\nf 1 1 1\nusemtl  b\nf 1 1 1\n"},
        {"blanks and returns", " mtllib\tab.mtl \r\n\tusemtl\ta\r\nf 1 1 1\nuse\rmtl b\nf 1 1 1\n"},
        {"letters", "mtllib bc.mtl\nusemtl \xc3\xa4\nf 1 1 1\nusemtl \xe4\nf 1 1 1\n"},
        {"large faces", "f 1" +
                            [] {
                                std::string corners;
                                for (int i = 0; i < 300; ++i)
                                    corners += " 1";
                                return corners + "\nmtllib ab.mtl\nusemtl a\nf" + corners +
                                       "\nusemtl b\nf" + corners + "\nf 1 1 1\n";
                            }()},
    };
    for (const TextCase &row : rows) {
        const QString file =
            model.write(QStringLiteral("model.obj"), bytesOf("v 1 2 3\n" + row.text));
        QFile forBytes(file);
        QFile forLines(file);
        const ReadOBJ bytes = readAsBytes(forBytes, model.directory());
        EXPECT_EQ(bytes.outcome, OBJScanOutcome::Finished) << row.name;
        EXPECT_THAT(differences(readByLines(forLines, model.directory()), bytes), IsEmpty())
            << row.name;
    }
}

TEST(OBJScanning, StopsAtAMissingLibrary)
{
    const TemporaryModel model;
    for (const char *line : {"mtllib none.mtl", "mtllib", "mtllib ", " mtllib\tx y",
                             "mtllib \xc3\xa4.mtl", "mtllib /none/x.mtl", "mtllib ../x.mtl"}) {
        const QString file = model.write(QStringLiteral("model.obj"),
                                         QByteArray("v 1 2 3\n") + line + "\nf 1 1 1\n");
        QFile forBytes(file);
        QFile forLines(file);
        const ReadOBJ bytes = readAsBytes(forBytes, model.directory());
        EXPECT_EQ(bytes.outcome, OBJScanOutcome::LibraryMissing) << line;
        EXPECT_THAT(differences(readByLines(forLines, model.directory()), bytes), IsEmpty())
            << line;
    }
}

} // namespace
} // namespace OrvTest
