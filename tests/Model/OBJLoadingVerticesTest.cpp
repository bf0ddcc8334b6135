#include "support/GLTest.h"
#include "support/LoadedOBJ.h"
#include "support/OBJTokenCases.h"
#include "support/QtPrinting.h"
#include "support/RandomRings.h"
#include "support/StreamContents.h"
#include "support/TemporaryModel.h"

#include <QtCore/QTextStream>

#include <algorithm>
#include <array>
#include <map>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const QByteArray ByteOrderMark = "\xef\xbb\xbf";

/// What a corner brings along: position, texture coordinate, normal.
struct Corner
{
    std::array<float, 3> position;
    std::array<float, 2> texCoord;
    std::array<float, 3> normal;
};

/// Corners become GPU vertices in the order in which they are first met, and those
/// of the same bytes become one.
class ExpectedVertices
{
public:
    void add(const Corner &corner)
    {
        std::array<unsigned char, sizeof(Corner)> bytes;
        static_assert(sizeof(Corner) == 8 * sizeof(float));
        std::memcpy(bytes.data(), &corner, sizeof corner);
        if (!_seen.insert({bytes, _seen.size()}).second)
            return;
        positions.insert(positions.end(), corner.position.begin(), corner.position.end());
        texCoords.insert(texCoords.end(), corner.texCoord.begin(), corner.texCoord.end());
        normals.insert(normals.end(), corner.normal.begin(), corner.normal.end());
    }

    std::vector<float> positions;
    std::vector<float> texCoords;
    std::vector<float> normals;

private:
    std::map<std::array<unsigned char, sizeof(Corner)>, std::size_t> _seen;
};

class OBJLoadingVertices : public GLTest
{
protected:
    LoadedOBJ load(const QByteArray &text)
    {
        return LoadedOBJ(_directory.write(QStringLiteral("model.obj"), text));
    }

    TemporaryModel _directory;
};

struct StreamCase
{
    const char *name;
    QByteArray text;
    std::vector<float> positions;
    std::vector<float> texCoords;
    std::vector<float> normals;
};

const QByteArray Points = "v 1 1 0\nv 2 1 0\nv 2 2 0\n";

/// Attributes whose values, indices and corners do not go together. The normals are
/// generated where the file has none: (0, 0, -1) for counter-clockwise triangles.
const StreamCase StreamCases[] = {
    {"quads share vertices",
     "v 1 0 0\nv 2 0 0\nv 2 1 0\nv 1 1 0\nv 3 0 0\nv 3 1 0\nf 1 2 3 4\nf 2 5 6 3\n",
     {1, 0, 0, 2, 0, 0, 2, 1, 0, 1, 1, 0, 3, 0, 0, 3, 1, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"vertices come in the order of the corners",
     Points + "f 3 1 2\n",
     {2, 2, 0, 1, 1, 0, 2, 1, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"equal positions under different indices",
     Points + "v 1 1 0\nv 1.0 1e0 -0e0\nf 1 2 3\nf 4 2 3\nf 5 2 3\n",
     // Minus zero is another vertex, whose triangle has a normal of its own sign.
     {1, 1, 0, 2, 1, 0, 2, 2, 0, 1, 1, -0.0f},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"one position under different normals",
     Points + "vn 0 0 1\nvn 0 1 0\nf 1//1 2//1 3//1\nf 1//2 2//1 3//1\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0, 1, 1, 0},
     {},
     {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 1, 0}},
    {"equal normals under different indices",
     Points + "vn 0 0 1\nvn 0 0 1\nf 1//1 2//1 3//1\nf 1//2 2//1 3//2\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, 1, 0, 0, 1, 0, 0, 1}},

    {"absent texture coordinates and normals are zeros",
     Points + "vt 5 6\nvn 0 0 1\nf 1/1 2//1 3\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {5, 6, 0, 0, 0, 0},
     {0, 0, 0, 0, 0, 1, 0, 0, 0}},
    {"indices that select nothing select zeros",
     Points + "vt 5 6\nvn 0 0 1\nf 1/2/-2 2/-1/1 3/-2/2\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {0, 0, 5, 6, 0, 0},
     {0, 0, 0, 0, 0, 1, 0, 0, 0}},
    {"a normal that no face uses",
     Points + "vn 0 0 1\nf 1 2 3\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"a normal line without numbers",
     Points + "vn\nf 1//1 2//1 3//1\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"texture indices without any texture coordinate",
     Points + "f 1/1 2/2 3/3\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"normal indices without any normal",
     Points + "f 1//1 2//2 3//3\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},

    {"positions named before they are there",
     "v 1 1 0\nf 1 2 3\nv 2 1 0\nv 2 2 0\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"negative indices count at the face",
     "v 1 1 0\nv 2 1 0\nv 2 2 0\nf -3 -2 -1\nv 3 3 0\nf -4 -3 -1\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0, 3, 3, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"indices of lines that do not parse",
     "v x\nv 2 1 0\nv\nv 2 2 0\nf 1 2 -1\nf 3 2 4\n",
     {0, 0, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},

    // The first face adds no normal indices. What the second one adds belongs to the
    // first three corners, and nothing is left for the last three.
    {"normals between the faces",
     Points + "f 1 2 3\nvn 0 0 1\nvn 0 1 0\nf 1//2 2//1 3//1\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0, 1, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"texture coordinates between the faces",
     Points + "f 1 2 3\nvt 5 6\nf 1/1 2/1 3/1\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0, 1, 1, 0, 2, 1, 0, 2, 2, 0},
     {5, 6, 5, 6, 5, 6, 0, 0, 0, 0, 0, 0},
     // The triangles lie upon each other; each vertex is in one of them.
     {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"positions between the faces",
     "f 3 2 1\n" + Points + "f 1 2 3\n",
     {1, 1, 0, 2, 1, 0, 2, 2, 0, 0, 0, 0},
     {},
     {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, 0}},
    {"faces of two sizes around late normals",
     Points + "f 1 2\nvn 0 0 1\nf 1//1 2//1 3//1\n",
     // Corners 1 2 1 2 3 with normals 1 1 1 and none for the last two.
     {1, 1, 0, 2, 1, 0, 2, 1, 0, 2, 2, 0},
     {},
     {0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0}},
};

TEST_F(OBJLoadingVertices, PutsAttributesTogether)
{
    for (const StreamCase &row : StreamCases) {
        SCOPED_TRACE(row.name);
        const LoadedOBJ loaded = load(row.text);
        EXPECT_EQ(loaded.errorMessage(), UploadedModel::untouchedError());
        EXPECT_THAT(loaded.values("va_Vertex"), areFloats(row.positions));
        EXPECT_THAT(loaded.values("va_TexCoord"), areFloats(row.texCoords));
        EXPECT_EQ(loaded.values("va_Normal"), row.normals);
        EXPECT_EQ(loaded.components("va_TexCoord"), row.texCoords.empty() ? 0 : 2);
    }
}

TEST_F(OBJLoadingVertices, KeepsVerticesThatAreNotDrawn)
{
    // The first and the last face have no material that is known, the second has no
    // triangle.
    const LoadedOBJ loaded = load("usemtl none\n" + Points +
                                  "v 7 7 7\nv 8 8 8\nf 3 2 4\nusemtl <default>\nf 5\nf 1 2 3\n"
                                  "usemtl none\nf 5 5 4\n");
    EXPECT_THAT(loaded.values("va_Vertex"),
                areFloats({2, 2, 0, 2, 1, 0, 7, 7, 7, 8, 8, 8, 1, 1, 0}));
    EXPECT_THAT(loaded.indices(), ElementsAre(4, 1, 0));
    EXPECT_EQ(loaded.values("va_Normal"),
              (std::vector<float>{0, 0, -1, 0, 0, -1, 0, 0, 0, 0, 0, 0, 0, 0, -1}));
}

/// Each number at each place that a number can have.
TEST_F(OBJLoadingVertices, ReadsNumbers)
{
    for (const NumberCase &row : numberCases()) {
        SCOPED_TRACE(row.name);
        const QByteArray n = QByteArray::fromStdString(row.text);
        const QByteArray text = "v " + n + " 1 2\nv 1 " + n + " 2\nv 1 2 " + n + "\n" //
                                + "vt " + n + " 1\nvt 1 " + n + "\n"                  //
                                + "vn " + n + " 1 2\nvn 1 " + n + " 2\nvn 1 2 " + n +
                                "\nf 1/1/1 2/2/2 3/1/3\n";
        ExpectedVertices expected;
        expected.add({{row.value, 1, 2}, {row.value, 1}, {row.value, 1, 2}});
        expected.add({{1, row.value, 2}, {1, row.value}, {1, row.value, 2}});
        expected.add({{1, 2, row.value}, {row.value, 1}, {1, 2, row.value}});

        // Without the mark the encoding is the locale's, and only ASCII is certain.
        const bool isASCII = std::all_of(n.begin(), n.end(), [](char c) { return c >= 0; });
        for (const QByteArray &mark : {ByteOrderMark, QByteArray()}) {
            if (mark.isEmpty() && !isASCII)
                continue;
            const LoadedOBJ loaded = load(mark + text);
            EXPECT_THAT(loaded.values("va_Vertex"), areFloats(expected.positions));
            EXPECT_THAT(loaded.values("va_TexCoord"), areFloats(expected.texCoords));
            EXPECT_THAT(loaded.values("va_Normal"), areFloats(expected.normals));
        }
    }
}

/// Value `number` of a kind, counted from 0; zeros outside the ten that there are.
float tenth(int index, float base)
{
    return index >= 0 && index < 10 ? base + static_cast<float>(index) : 0.0f;
}

Corner cornerOf(int v, int vt, int vn)
{
    return {{tenth(v, 100), 0, 0}, {tenth(vt, 200), 0}, {0, 0, tenth(vn, 300)}};
}

TEST_F(OBJLoadingVertices, ReadsCorners)
{
    QByteArray values;
    for (int i = 0; i < 10; ++i) {
        values += "v " + QByteArray::number(100 + i) + " 0 0\n";
        values += "vt " + QByteArray::number(200 + i) + " 0\n";
        values += "vn 0 0 " + QByteArray::number(300 + i) + "\n";
    }
    for (const CornerCase &row : cornerCases()) {
        SCOPED_TRACE(row.name);
        const QByteArray face = "f 1/2/3 " + QByteArray::fromStdString(row.text) + " 4\n";
        const LoadedOBJ loaded = load(ByteOrderMark + values + face + "f 5/6/7 5/6/7 5/6/7\n");
        ExpectedVertices expected;
        if (row.ok) {
            expected.add(cornerOf(0, 1, 2));
            expected.add(cornerOf(row.v, row.vt, row.vn));
            expected.add(cornerOf(3, Absent, Absent));
        }
        expected.add(cornerOf(4, 5, 6));
        EXPECT_THAT(loaded.values("va_Vertex"), areFloats(expected.positions));
        EXPECT_THAT(loaded.values("va_TexCoord"), areFloats(expected.texCoords));
        EXPECT_THAT(loaded.values("va_Normal"), areFloats(expected.normals));
        EXPECT_EQ(loaded.indices().size(), row.ok ? 6u : 3u);
    }
}

TEST_F(OBJLoadingVertices, KnowsUnicodeBlanks)
{
    for (const BlankCase &row : blankCases()) {
        SCOPED_TRACE(row.name);
        const QByteArray blank = QByteArray::fromStdString(row.text);
        const LoadedOBJ loaded =
            load(ByteOrderMark + "v 0 0 0\n" + blank + "v" + blank + "1" + blank + "2 3" + blank +
                 "\nf 1 2 2\n" + blank + "f" + blank + "1" + blank + "2" + blank + "2\n");
        EXPECT_THAT(loaded.values("va_Vertex"),
                    areFloats(row.isBlank ? std::vector<float>{0, 0, 0, 1, 2, 3}
                                          : std::vector<float>{0, 0, 0}));
        EXPECT_EQ(loaded.indices().size(), row.isBlank ? 6u : 3u);
    }
}

struct OddCase
{
    const char *name;
    QByteArray text;
    std::vector<float> positions;
};

const OddCase OddCases[] = {
    {"CR inside a number", "v 1\r2 3 4\nf 1 1 1\n", {12, 3, 4}},
    {"CR inside a keyword", "v\r 1 2 3\n\rf 1 1 1\r\r\n", {1, 2, 3}},
    {"CR between lines does not part them", "v 1 2 3\r4\nf 1 1 1\n", {1, 2, 34}},
    {"NUL in the last number", QByteArray("v 1 2 3\0\nf 1 1 1\n", 17), {1, 2, 0}},
    {"NUL in the keyword", QByteArray("v\0 9 9 9\nv 1 2 3\nf 1 1 1\n", 25), {1, 2, 3}},
    {"NUL in a comment", QByteArray("# \0\nv 1 2 3\nf 1 1 1\n", 20), {1, 2, 3}},
    {"bytes of no encoding in a comment", "# \xff\xfe\x80\nv 1 2 3\nf 1 1 1\n", {1, 2, 3}},
    {"bytes of no encoding in a number", "v 1 2\xff 3\nf 1 1 1\n", {1, 0, 3}},
    {"byte-order mark", ByteOrderMark + "v 1 2 3\nf 1 1 1\n", {1, 2, 3}},
    {"byte-order mark inside the file",
     ByteOrderMark + "v 1 2 3\n" + ByteOrderMark + "v 4 5 6\nf 1 1 2\n",
     {1, 2, 3, 0, 0, 0}},
    {"long comment", "# " + QByteArray(3000000, 'x') + "\nv 1 2 3\nf 1 1 1\n", {1, 2, 3}},
    {"long blank", "v" + QByteArray(3000000, ' ') + "1 2 3\nf 1 1 1\n", {1, 2, 3}},
    {"long keyword", QByteArray(3000000, 'v') + " 1\nv 1 2 3\nf 1 1 1\n", {1, 2, 3}},
    {"many empty lines", QByteArray(1000000, '\n') + "v 1 2 3\nf 1 1 1\n", {1, 2, 3}},
    {"comment that hides a line", "v 1 2 3 # \\\nv 4 5 6\nf 1 1 2\n", {1, 2, 3, 4, 5, 6}},
};

TEST_F(OBJLoadingVertices, ReadsOddFiles)
{
    for (const OddCase &row : OddCases) {
        SCOPED_TRACE(row.name);
        EXPECT_THAT(load(row.text).values("va_Vertex"), areFloats(row.positions));
    }
}

TEST_F(OBJLoadingVertices, ReadsOtherEncodingsByTheirMark)
{
    for (const char *codec : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        SCOPED_TRACE(codec);
        QByteArray bytes;
        {
            QTextStream out(&bytes);
            out.setCodec(codec);
            out.setGenerateByteOrderMark(true);
            out << QStringLiteral("# \u2713\nv 1 2 3\nv 4 5 6\nf 1 2 1\n");
        }
        EXPECT_THAT(load(bytes).values("va_Vertex"), areFloats({1, 2, 3, 4, 5, 6}));
    }
}

/// A number as programs write them, and now and then as nobody does.
QByteArray randomNumber(Dice &dice)
{
    if (dice.oneIn(50)) {
        const auto &cases = numberCases();
        std::string text =
            cases[static_cast<std::size_t>(dice.below(static_cast<int>(cases.size())))].text;
        if (text.size() < 100)
            return QByteArray::fromStdString(text);
    }
    QByteArray number = dice.oneIn(2) ? "-" : "";
    const int whole = dice.oneIn(9) ? dice.between(1, 20) : dice.between(1, 4);
    const int fraction = dice.oneIn(9) ? dice.between(0, 30) : 6;
    for (int i = 0; i < whole; ++i)
        number += static_cast<char>('0' + dice.below(10));
    if (fraction > 0)
        number += '.';
    for (int i = 0; i < fraction; ++i)
        number += static_cast<char>('0' + dice.below(10));
    if (dice.oneIn(15))
        number += QByteArray("e") + (dice.oneIn(2) ? "-" : "") + QByteArray::number(dice.below(50));
    return number;
}

/// Much larger than whatever buffers it is read through, so that their ends fall
/// upon every part of a line.
TEST_F(OBJLoadingVertices, ReadsALargeFileAsQtReadsItsNumbers)
{
    constexpr std::uint32_t seed = 20240917;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    for (const char *lineEnd : {"\n", "\r\n"}) {
        QByteArray text = ByteOrderMark;
        std::vector<float> expected;
        const int count = 60000;
        for (int i = 0; i < count; ++i) {
            text += dice.oneIn(20) ? "v  " : "v ";
            for (int axis = 0; axis < 3; ++axis) {
                // The first coordinate tells all positions apart.
                const QByteArray number = axis == 0 ? QByteArray::number(i) : randomNumber(dice);
                text += number + (axis < 2 ? " " : lineEnd);
                expected.push_back(QString::fromUtf8(number.data(), number.size()).toFloat());
            }
        }
        for (int i = 1; i + 2 <= count; i += 3)
            text += "f " + QByteArray::number(i) + ' ' + QByteArray::number(i + 1) + ' ' +
                    QByteArray::number(i + 2) + lineEnd;
        const LoadedOBJ loaded = load(text);
        EXPECT_EQ(loaded.vertexCount(), static_cast<unsigned>(count));
        EXPECT_THAT(loaded.values("va_Vertex"), areFloats(expected));
    }
}

/// 65534 vertices are the most that have 16-bit indices.
TEST_F(OBJLoadingVertices, WidensIndicesForManyVertices)
{
    for (const int count : {65534, 65535}) {
        SCOPED_TRACE(count);
        QByteArray text;
        for (int i = 0; i < count; ++i)
            text += "v " + QByteArray::number(i) + " 0 1\n";
        for (int i = 1; i <= count; i += 2)
            text += "f " + QByteArray::number(i) + " -1 1\n";
        for (int i = 2; i <= count; i += 2)
            text += "f " + QByteArray::number(i) + " -1 1\n";
        const LoadedOBJ loaded = load(text);
        EXPECT_EQ(loaded.vertexCount(), static_cast<unsigned>(count));
        EXPECT_EQ(loaded.indexType(), count == 65534 ? 0x1403u : 0x1405u);
        EXPECT_EQ(loaded.indices().size(), static_cast<std::size_t>(3 * count));
        EXPECT_EQ(*std::max_element(loaded.indices().begin(), loaded.indices().end()),
                  static_cast<unsigned>(count - 1));
    }
}

TEST_F(OBJLoadingVertices, CutsAFaceOfManyCorners)
{
    constexpr int count = 1000;
    QByteArray text;
    QByteArray face = "f";
    for (int i = 0; i < count; ++i) {
        // A parabola: convex, and every position is exact.
        text += "v " + QByteArray::number(i - count / 2) + ' ' +
                QByteArray::number((i - count / 2) * (i - count / 2)) + " 0\n";
        face += ' ' + QByteArray::number(i + 1);
    }
    const LoadedOBJ loaded = load(text + face + "\n");
    EXPECT_EQ(loaded.vertexCount(), static_cast<unsigned>(count));
    EXPECT_EQ(loaded.indices().size(), static_cast<std::size_t>(3 * (count - 2)));
    EXPECT_THAT(loaded.warnings(), IsEmpty());
}

} // namespace
