#include "support/OBJTokenCases.h"
#include "support/QtPrinting.h"
#include "support/StreamContents.h"
#include "support/TextReader.h"

#include <OrvModel/OBJReader.h>

#include <QtCore/QTextStream>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;

namespace {

using Lines = TextReader<OBJReader>;

/// The types of all lines up to and including the end.
std::vector<int> lineTypes(const std::string &text)
{
    Lines reader(text);
    const int first = reader->getLineType();
    std::vector<int> types = followingTypes(reader);
    types.insert(types.begin(), first);
    return types;
}

struct Corner
{
    int v;
    int vt;
    int vn;
};

bool operator==(const Corner &first, const Corner &second)
{
    return first.v == second.v && first.vt == second.vt && first.vn == second.vn;
}

void PrintTo(const Corner &corner, std::ostream *stream)
{
    *stream << corner.v << '/' << corner.vt << '/' << corner.vn;
}

/// In the order of a token in the file.
std::vector<Corner> cornersOf(const OBJReader &reader)
{
    std::vector<Corner> corners;
    for (int i = 0; i < reader.getNumVertices(); ++i) {
        const OBJReader::Vertex vertex = reader.getVertex(i);
        corners.push_back({vertex.v, vertex.vt, vertex.vn});
    }
    return corners;
}

/// Moves to the next line of a type.
void skipTo(OBJReader &reader, OBJReader::LineType type)
{
    while (reader.valid() && reader.getLineType() != type)
        reader.next();
}

constexpr int V = OBJReader::LINE_V;
constexpr int VN = OBJReader::LINE_VN;
constexpr int VT = OBJReader::LINE_VT;
constexpr int F = OBJReader::LINE_F;
constexpr int MTLLIB = OBJReader::LINE_MTLLIB;
constexpr int USEMTL = OBJReader::LINE_USEMTL;
constexpr int END = OBJReader::LINE_EOF;

TEST(OBJReader, NumbersItsLineTypes)
{
    EXPECT_EQ(V, 0);
    EXPECT_EQ(VN, 1);
    EXPECT_EQ(VT, 2);
    EXPECT_EQ(F, 3);
    EXPECT_EQ(MTLLIB, 4);
    EXPECT_EQ(USEMTL, 5);
    EXPECT_EQ(END, 6);
    EXPECT_EQ(int(OBJReader::LINE_SKIP), 7);
    EXPECT_EQ(OBJReader::AbsentIndex, 0x7fffffff);
}

TEST(OBJReader, KeepsACornerAsThreeIntegers)
{
    const OBJReader::Vertex corner{1, 2, 3};
    EXPECT_EQ(sizeof corner, 12u);
    EXPECT_EQ(corner.v, 1);
    EXPECT_EQ(corner.vn, 2);
    EXPECT_EQ(corner.vt, 3);
}

struct LineCase
{
    const char *name;
    std::string text;
    std::vector<int> types;
};

const LineCase LineCases[] = {
    {"nothing", "", {END}},
    {"an empty line", "\n", {END}},
    {"comments and blank lines", "# one\n\n   \n\t# two\n#\n", {END}},
    {"every keyword",
     "v 1 2 3\nvn 1 2 3\nvt 1 2\nf 1 2 3\nmtllib a.mtl\nusemtl a\n",
     {V, VN, VT, F, MTLLIB, USEMTL, END}},
    {"bare keywords", "v\nvn\nvt\nf\nmtllib\nusemtl\n", {V, VN, VT, F, MTLLIB, USEMTL, END}},
    {"no line end at the end", "v 1 2 3", {V, END}},
    {"leading blanks", "   v 1 2 3\n\t f 1\n", {V, F, END}},
    {"trailing blanks", "v 1 2 3   \nf 1 \t\n", {V, F, END}},
    {"capitals", "V 1 2 3\nVN 1 2 3\nF 1\nUseMtl a\nMTLLIB a\n", {END}},
    {"what else there is in such files",
     "o cube\ng left\ns 1\nl 1 2\np 1\nvp 1 2\ncurv 0 1\nbevel on\nmaplib a\nusemap b\n",
     {END}},
    {"longer words", "vertex 1\nvnormal 1\nf1 2 3\nfo 1\nmtllibs a\nv1 2 3\n", {END}},
    {"keyword joined to a comment", "v# 1 2 3\nf#\n", {END}},
    {"commented keywords", "#v 1 2 3\n# v 1 2 3\n  # f 1 2 3\n", {END}},
    {"continued line", "f 1 2 \\\n3\nv 1 2 3\n", {F, V, END}},
    {"keyword behind others", "o v 1 2 3\nv 1 2 3\n", {V, END}},
    {"CRLF", "v 1 2 3\r\n\r\n# x\r\nf 1 2 3\r\n", {V, F, END}},
    {"a CR is taken out of a keyword", "v\rn 1 2 3\nmtl\rlib a\n", {VN, MTLLIB, END}},
    {"lone CRs end no line", "v 1 2 3\rf 1 2 3\rf 1", {V, END}},
    {"a comment that lone CRs do not end", "# x\rv 1 2 3\rf 1", {END}},
};

TEST(OBJReader, ClassifiesLines)
{
    for (const LineCase &row : LineCases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(lineTypes(row.text), row.types);
    }
}

TEST(OBJReader, StartsAtTheFirstLine)
{
    Lines reader("# x\n\no cube\nusemtl red\n");
    EXPECT_TRUE(reader->valid());
    EXPECT_EQ(reader->getLineType(), USEMTL);
    EXPECT_THAT(floatsOf(reader->getV()), areFloats({0, 0, 0}));
    EXPECT_EQ(reader->getNumVertices(), 0);
    EXPECT_TRUE(reader->getUsemtlName().isEmpty());
}

TEST(OBJReader, StaysAtTheEnd)
{
    Lines reader("v 1 2 3\n");
    EXPECT_TRUE(reader->parseLine());
    for (int i = 0; i < 3; ++i) {
        reader->next();
        EXPECT_FALSE(reader->valid());
        EXPECT_EQ(reader->getLineType(), END);
        EXPECT_FALSE(reader->parseLine());
    }
    EXPECT_THAT(floatsOf(reader->getV()), areFloats({1, 2, 3}));
}

TEST(OBJReader, IsValidWhateverParses)
{
    Lines reader("f x\nf 1\n");
    EXPECT_FALSE(reader->parseLine());
    EXPECT_TRUE(reader->valid());
    EXPECT_EQ(reader->getLineType(), F);
    reader->next();
    EXPECT_TRUE(reader->valid());
    EXPECT_TRUE(reader->parseLine());
}

TEST(OBJReader, ParsesALineAsOftenAsAsked)
{
    Lines reader("f 1/2/3\n");
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(reader->parseLine());
        EXPECT_THAT(cornersOf(*reader), ElementsAre(Corner{0, 1, 2}));
    }
}

TEST(OBJReader, GivesOneSetOfNumbers)
{
    Lines reader("v 1 2 3\n");
    EXPECT_EQ(&reader->getV(), &reader->getVn());
    EXPECT_EQ(&reader->getV(), &reader->getVt());
    EXPECT_EQ(&reader->getUsemtlName(), &reader->getMtllibPath());
}

struct ValueCase
{
    const char *name;
    std::string line;
    std::vector<float> xyz;
};

/// The numbers were 7, 8, 9 before the line.
const ValueCase ValueCases[] = {
    {"position", "v 1 2 3", {1, 2, 3}},
    {"position with a weight", "v 1 2 3 4", {1, 2, 3}},
    {"position with a colour", "v 1 2 3 .1 .2 .3", {1, 2, 3}},
    {"position of two numbers", "v 1 2", {1, 2, 0}},
    {"position of one number", "v 1", {1, 0, 0}},
    {"position of no number", "v", {0, 0, 0}},
    {"position with a comment", "v 1 2 # 3", {1, 2, 0}},
    {"position with a comment in the last number", "v 1 2 3#4", {1, 2, 0}},
    {"position with words", "v x 2 y", {0, 2, 0}},
    {"normal", "vn 0 -1 0", {0, -1, 0}},
    {"normal of two numbers", "vn 1 2", {1, 2, 0}},
    {"texture coordinate", "vt 0.5 0.25", {0.5f, 0.25f, 9}},
    {"texture coordinate with a third", "vt 0.5 0.25 0.75", {0.5f, 0.25f, 9}},
    {"texture coordinate of one number", "vt 0.5", {0.5f, 0, 9}},
    {"texture coordinate of no number", "vt", {0, 0, 9}},
    {"a CR is taken out of a number", "v 1 2\r3 4", {1, 23, 4}},
};

TEST(OBJReader, ReadsValues)
{
    for (const ValueCase &row : ValueCases) {
        SCOPED_TRACE(row.name);
        Lines reader("v 7 8 9\n" + row.line + "\n");
        EXPECT_TRUE(reader->parseLine());
        reader->next();
        EXPECT_TRUE(reader->parseLine());
        EXPECT_THAT(floatsOf(reader->getVn()), areFloats(row.xyz));
    }
}

TEST(OBJReader, ReadsNumbers)
{
    for (const NumberCase &row : numberCases()) {
        SCOPED_TRACE(row.name);
        Lines reader("v 5 " + row.text + " 6\nvn " + row.text + "\nvt 5 " + row.text + "\n");
        EXPECT_TRUE(reader->parseLine());
        EXPECT_THAT(floatsOf(reader->getV()), areFloats({5, row.value, 6}));
        reader->next();
        EXPECT_TRUE(reader->parseLine());
        EXPECT_THAT(floatsOf(reader->getVn()), areFloats({row.value, 0, 0}));
        reader->next();
        EXPECT_TRUE(reader->parseLine());
        EXPECT_THAT(floatsOf(reader->getVt()), areFloats({5, row.value, 0}));
    }
}

/// Two numbers with something in between are two numbers where it is a blank.
TEST(OBJReader, KnowsUnicodeBlanks)
{
    for (const BlankCase &row : blankCases()) {
        SCOPED_TRACE(row.name);
        const std::string &blank = row.text;
        Lines reader(blank + "v" + blank + "1" + blank + "2" + blank + "\nusemtl a" + blank +
                     "b\n");
        EXPECT_EQ(reader->parseLine() && reader->getV()[0] == 1.0f && reader->getV()[1] == 2.0f,
                  row.isBlank);

        const std::string joinedText = "a" + blank + "b";
        const QString joined =
            QString::fromUtf8(joinedText.data(), static_cast<int>(joinedText.size()));
        skipTo(*reader, OBJReader::LINE_USEMTL);
        EXPECT_TRUE(reader->parseLine());
        EXPECT_EQ(reader->getUsemtlName(), row.isBlank ? QStringLiteral("a") : joined);
    }
}

std::string tenOfEach()
{
    std::string text;
    for (int i = 0; i < 10; ++i)
        text += "v 1 2 3\nvt 1 2\nvn 1 2 3\n";
    return text;
}

TEST(OBJReader, ReadsCorners)
{
    for (const CornerCase &row : cornerCases()) {
        SCOPED_TRACE(row.name);
        Lines reader(tenOfEach() + "f 1/2/3 " + row.text + " 4\n");
        skipTo(*reader, OBJReader::LINE_F);
        EXPECT_EQ(reader->parseLine(), row.ok);
        const std::vector<Corner> good{{0, 1, 2}, {row.v, row.vt, row.vn}, {3, Absent, Absent}};
        // What came before the bad corner stays.
        const std::vector<Corner> bad{{0, 1, 2}};
        EXPECT_EQ(cornersOf(*reader), row.ok ? good : bad);
    }
}

struct FaceCase
{
    const char *name;
    std::string line;
    bool ok;
    std::vector<int> positions;
};

const FaceCase FaceCases[] = {
    {"triangle", "f 1 2 3", true, {0, 1, 2}},
    {"one corner", "f 1", true, {0}},
    {"two corners", "f 1 2", true, {0, 1}},
    {"seven corners", "f 7 6 5 4 3 2 1", true, {6, 5, 4, 3, 2, 1, 0}},
    {"the same corner again", "f 1 1 1", true, {0, 0, 0}},
    {"nothing", "f", true, {}},
    {"blanks", "f   \t ", true, {}},
    {"counted backwards", "f -1 -2 -3", true, {9, 8, 7}},
    {"comment", "f 1 2 3 # comment", true, {0, 1, 2}},
    {"comment without a blank after the sign", "f 1 2 3 #4 x", true, {0, 1, 2}},
    {"two comment signs", "f 1 ## x", true, {0}},
    {"only a comment", "f # 1 2 3", true, {}},
    {"comment joined to a corner", "f 1 2 3#c", false, {0, 1}},
    {"word", "f 1 x 3", false, {0}},
    {"word first", "f x 1 2", false, {}},
    {"word after the comment sign", "f 1 # x", true, {0}},
    {"continuation sign", "f 1 2 \\", false, {0, 1}},
    {"a CR is taken out of a corner", "f 1\r0 2", true, {9, 1}},
};

TEST(OBJReader, ReadsFaces)
{
    for (const FaceCase &row : FaceCases) {
        SCOPED_TRACE(row.name);
        Lines reader(tenOfEach() + row.line + "\n");
        skipTo(*reader, OBJReader::LINE_F);
        EXPECT_EQ(reader->parseLine(), row.ok);
        std::vector<int> positions;
        for (const Corner &corner : cornersOf(*reader))
            positions.push_back(corner.v);
        EXPECT_EQ(positions, row.positions);
    }
}

/// Much more than the hundred corners for which room is kept.
TEST(OBJReader, ParsesCornersOfWhateverLineIsAtHand)
{
    // parseLine() is what remembers the outcome, and what looks at the line's type.
    Lines reader("f 1 2\nv 7 8 x\n");
    EXPECT_TRUE(reader->parseVerts());
    EXPECT_THAT(cornersOf(*reader),
                ElementsAre(Corner{0, Absent, Absent}, Corner{1, Absent, Absent}));
    reader->next();
    EXPECT_FALSE(reader->parseVerts());
    EXPECT_THAT(cornersOf(*reader),
                ElementsAre(Corner{6, Absent, Absent}, Corner{7, Absent, Absent}));
    EXPECT_THAT(reader->getV(), ElementsAre(0, 0, 0));
}

TEST(OBJReader, ReadsFacesOfManyCorners)
{
    std::string text = "f";
    for (int i = 1; i <= 100000; ++i)
        text += ' ' + std::to_string(i);
    Lines reader(text);
    ASSERT_TRUE(reader->parseLine());
    ASSERT_EQ(reader->getNumVertices(), 100000);
    for (int i = 0; i < 100000; ++i)
        ASSERT_EQ(reader->getVertex(i).v, i);
}

TEST(OBJReader, ForgetsTheFaceBefore)
{
    Lines reader("f 1 2 3\nf 4\nf\nf x\n");
    EXPECT_TRUE(reader->parseLine());
    reader->next();
    EXPECT_EQ(reader->getNumVertices(), 3); // until the next is parsed
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getNumVertices(), 1);
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getNumVertices(), 0);
    reader->next();
    EXPECT_FALSE(reader->parseLine());
    EXPECT_EQ(reader->getNumVertices(), 0);
}

/// Negative indices count from what was seen, parsed or not, and each kind from its
/// own.
TEST(OBJReader, CountsTheLinesOfEachKind)
{
    Lines reader("v 1 2 3\nv x\nv\nvn 1 2 3\nvn\nvt 1 2\n"
                 "f -1/-1/-1\nv 1 2 3\nvt\nf -1/-1/-1\nf -4/-2/-2\nf -5/-3/-3\n");
    std::vector<Corner> corners;
    for (skipTo(*reader, OBJReader::LINE_F); reader->valid(); reader->next()) {
        if (reader->getLineType() == F) {
            EXPECT_TRUE(reader->parseLine());
            corners.push_back(cornersOf(*reader).at(0));
        }
    }
    EXPECT_THAT(corners,
                ElementsAre(Corner{2, 0, 1}, Corner{3, 1, 1}, Corner{0, 0, 0}, Corner{-1, -1, -1}));
}

struct IndexCase
{
    int index;
    int count;
    int resolved;
};

const IndexCase IndexCases[] = {
    {1, 10, 0},
    {10, 10, 9},
    {11, 10, 10},
    {1, 0, 0},
    {2147483647, 0, 2147483646},
    {0, 10, 2147483647},
    {0, 0, 2147483647},
    {-1, 10, 9},
    {-10, 10, 0},
    {-11, 10, -1},
    {-1, 0, -1},
    {-1, 2147483647, 2147483646},
    {-2147483647 - 1, 2147483647, -1},
    {-2147483647 - 1, 0, -2147483647 - 1},
};

TEST(OBJReader, ResolvesIndices)
{
    Lines reader("");
    for (const IndexCase &row : IndexCases)
        EXPECT_EQ(reader->resolveIndex(row.index, row.count), row.resolved)
            << row.index << " of " << row.count;
}

TEST(OBJReader, RefusesEveryLineOfABadStream)
{
    for (const char *line : {"v 1 2 3", "vn 1 2 3", "vt 1 2", "f 4 5", "mtllib a", "usemtl a"}) {
        for (const auto status : {QTextStream::ReadPastEnd, QTextStream::ReadCorruptData}) {
            SCOPED_TRACE(line);
            Lines reader(std::string("f 1 2 3\n") + line + "\n");
            EXPECT_TRUE(reader->parseLine());
            reader->next();
            reader.stream().setStatus(status);
            EXPECT_FALSE(reader->parseLine());
            // The face before is still there, also after a bad face.
            EXPECT_THAT(cornersOf(*reader),
                        ElementsAre(Corner{0, Absent, Absent}, Corner{1, Absent, Absent},
                                    Corner{2, Absent, Absent}));
            reader.stream().resetStatus();
            EXPECT_TRUE(reader->parseLine());
        }
    }
}

TEST(OBJReader, ReadsFromAString)
{
    const QString text = QStringLiteral("v 1 2 3\r\nf 1\n");
    QTextStream stream(const_cast<QString *>(&text), QIODevice::ReadOnly);
    OBJReader reader(stream);
    EXPECT_TRUE(reader.parseLine());
    EXPECT_THAT(floatsOf(reader.getV()), areFloats({1, 2, 3}));
    reader.next();
    EXPECT_EQ(reader.getLineType(), F);
}

} // namespace
