#include "support/OBJTokenCases.h"
#include "support/QtPrinting.h"
#include "support/StreamContents.h"
#include "support/TextReader.h"

#include <OrvModel/MTLReader.h>

#include <limits>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

/// Unknown keywords are skipped unless a test says otherwise.
class Lines : public TextReader<MTLReader>
{
public:
    explicit Lines(const std::string &text, bool skipUnknown = true) : TextReader(text, skipUnknown)
    {}
};

constexpr int NEWMTL = MTLReader::LINE_NEWMTL;
constexpr int KA = MTLReader::LINE_KA;
constexpr int KD = MTLReader::LINE_KD;
constexpr int KS = MTLReader::LINE_KS;
constexpr int NS = MTLReader::LINE_NS;
constexpr int D = MTLReader::LINE_D;
constexpr int MAP_KD = MTLReader::LINE_MAP_KD;
constexpr int MAP_KS = MTLReader::LINE_MAP_KS;
constexpr int MAP_KA = MTLReader::LINE_MAP_KA;
constexpr int MAP_NS = MTLReader::LINE_MAP_NS;
constexpr int END = MTLReader::LINE_EOF;
constexpr int UNKNOWN = MTLReader::LINE_UNKNOWN;

/// The types of all lines from the first next() to the end.
std::vector<int> lineTypes(const std::string &text, bool skipUnknown)
{
    Lines reader(text, skipUnknown);
    return followingTypes(reader);
}

TEST(MTLReader, NumbersItsLineTypes)
{
    EXPECT_EQ(NEWMTL, 0);
    EXPECT_EQ(KA, 1);
    EXPECT_EQ(KD, 2);
    EXPECT_EQ(KS, 3);
    EXPECT_EQ(NS, 4);
    EXPECT_EQ(D, 5);
    EXPECT_EQ(MAP_KD, 6);
    EXPECT_EQ(MAP_KS, 7);
    EXPECT_EQ(MAP_KA, 8);
    EXPECT_EQ(MAP_NS, 9);
    EXPECT_EQ(END, 10);
    EXPECT_EQ(UNKNOWN, 11);
}

TEST(MTLReader, DoesNotReadAhead)
{
    for (const char *text : {"", "newmtl a\n"}) {
        Lines reader(text);
        EXPECT_TRUE(reader->valid());
        EXPECT_EQ(reader->getLineType(), UNKNOWN);
        EXPECT_FALSE(reader->parseLine());
        EXPECT_THAT(floatsOf(reader->getKd()), areFloats({0, 0, 0}));
        EXPECT_TRUE(reader->getNewmtlName().isEmpty());
        EXPECT_TRUE(reader->line().isEmpty());
    }
}

struct LineCase
{
    const char *name;
    std::string text;
    std::vector<int> skipping;
    std::vector<int> stopping;
};

const LineCase LineCases[] = {
    {"nothing", "", {END}, {END}},
    {"comments and blank lines", "# only a comment\n   \n\n\t # x\n#\n", {END}, {END}},
    {"every keyword",
     "newmtl a\nKa 1 1 1\nKd 1 1 1\nKs 1 1 1\nNs 1\nd 1\nmap_Kd a\nmap_Ks a\nmap_Ka a\nmap_Ns a\n",
     {NEWMTL, KA, KD, KS, NS, D, MAP_KD, MAP_KS, MAP_KA, MAP_NS, END},
     {NEWMTL, KA, KD, KS, NS, D, MAP_KD, MAP_KS, MAP_KA, MAP_NS, END}},
    {"bare keywords",
     "newmtl\nKd\nd\nmap_Kd",
     {NEWMTL, KD, D, MAP_KD, END},
     {NEWMTL, KD, D, MAP_KD, END}},
    {"no line end at the end", "Kd 1 1 1", {KD, END}, {KD, END}},
    {"leading blanks", "  Kd 1 1 1\n\td 1\n", {KD, D, END}, {KD, D, END}},
    {"other case",
     "kd 1 1 1\nKD 1 1 1\nNEWMTL a\nD 1\nns 1\nMap_Kd a\n",
     {END},
     {UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, END}},
    {"what else there is in such files",
     "illum 2\nNi 1\nTr 0\nTf 1 1 1\nKe 1 1 1\nmap_Ke a\nmap_d a\nbump a\nmap_bump a\ndisp a\n",
     {END},
     {UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN,
      END}},
    {"longer words",
     "newmtls a\nKd1 1 1\nd1\nmap_Kd_ a\n",
     {END},
     {UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, END}},
    {"unknown between known",
     "illum 2\nd 1\nNi 1\nNs 1\nillum 1",
     {D, NS, END},
     {UNKNOWN, D, UNKNOWN, NS, UNKNOWN, END}},
    {"keyword joined to a comment", "d# 1\nKd#\n", {D, KD, END}, {D, KD, END}},
    {"commented keywords", "#d 1\n # d 1\n", {END}, {END}},
    {"CRLF", "newmtl a\r\n\r\n# x\r\nd 1\r\n", {NEWMTL, D, END}, {NEWMTL, D, END}},
    {"a CR is taken out of a keyword", "new\rmtl a\n", {NEWMTL, END}, {NEWMTL, END}},
    {"lone CRs end no line", "newmtl a\rd 1\rNs 1", {NEWMTL, END}, {NEWMTL, END}},
};

TEST(MTLReader, ClassifiesLines)
{
    for (const LineCase &row : LineCases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(lineTypes(row.text, true), row.skipping);
        EXPECT_EQ(lineTypes(row.text, false), row.stopping);
    }
}

TEST(MTLReader, RefusesUnknownLines)
{
    Lines reader("illum 2\nd 0.5\n", false);
    reader->next();
    EXPECT_EQ(reader->getLineType(), UNKNOWN);
    EXPECT_TRUE(reader->valid());
    EXPECT_FALSE(reader->parseLine());
    EXPECT_EQ(reader->line(), QStringLiteral("illum 2"));
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getD(), 0.5f);
}

TEST(MTLReader, StaysAtTheEnd)
{
    Lines reader("d 0.5");
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    for (int i = 0; i < 3; ++i) {
        reader->next();
        EXPECT_FALSE(reader->valid());
        EXPECT_EQ(reader->getLineType(), END);
        EXPECT_FALSE(reader->parseLine());
    }
    EXPECT_EQ(reader->getD(), 0.5f);
}

TEST(MTLReader, GivesOneSetOfNumbersAndOneText)
{
    Lines reader("");
    EXPECT_EQ(&reader->getKa(), &reader->getKd());
    EXPECT_EQ(&reader->getKa(), &reader->getKs());
    EXPECT_EQ(&reader->getNewmtlName(), &reader->getMapKdPath());
    EXPECT_EQ(&reader->getNewmtlName(), &reader->getMapKsPath());
    EXPECT_EQ(&reader->getNewmtlName(), &reader->getMapKaPath());
    EXPECT_EQ(&reader->getNewmtlName(), &reader->getMapNsPath());
}

struct CleanCase
{
    const char *name;
    std::string text;
    QString line;
};

const CleanCase CleanCases[] = {
    {"plain", "Kd 1 1 1", QStringLiteral("Kd 1 1 1")},
    {"blanks and a comment", "  Kd 0.5 0.5 0.5   # grey", QStringLiteral("Kd 0.5 0.5 0.5")},
    {"tabs", "\t\tKd 1\t1 1\t", QStringLiteral("Kd 1\t1 1")},
    {"comment in a word", "Kd 1 1 1#grey", QStringLiteral("Kd 1 1 1")},
    {"two comment signs", "Kd 1 # 2 # 3", QStringLiteral("Kd 1")},
    {"comment after the keyword", "Kd# 1 1 1", QStringLiteral("Kd")},
    {"other blanks", "\u3000Kd 1\u00a0", QStringLiteral("Kd 1")},
};

TEST(MTLReader, CleansLines)
{
    for (const CleanCase &row : CleanCases) {
        SCOPED_TRACE(row.name);
        Lines reader(row.text + "\n");
        reader->next();
        EXPECT_EQ(reader->line(), row.line);
    }
}

struct ColorCase
{
    const char *name;
    std::string text;
    bool ok;
    std::vector<float> color;
};

const ColorCase ColorCases[] = {
    {"three numbers", "0.5 0.25 1", true, {0.5f, 0.25f, 1}},
    {"four numbers", "1 2 3 4", true, {1, 2, 3}},
    {"a word behind", "1 2 3 x", true, {1, 2, 3}},
    {"comment behind", "1 2 3# 4", true, {1, 2, 3}},
    {"negative and large", "-1 1e3 2000", true, {-1, 1000, 2000}},
    {"signs part numbers", "1-2+3", true, {1, -2, 3}},
    {"a sign parts two", "1-2 3", true, {1, -2, 3}},
    {"points part numbers", "1.5.25.125", true, {1.5f, 0.25f, 0.125f}},
    {"letters behind the last", "1 2 3abc", true, {1, 2, 3}},
    {"a CR is taken out", "1 2\r3 4", true, {1, 23, 4}},
    {"two numbers", "1 1", false, {}},
    {"one number", "1", false, {}},
    {"no number", "", false, {}},
    {"two numbers and a comment", "1 1 # 1", false, {}},
    {"spectral curve", "spectral file.rfl", false, {}},
    {"space of colours", "xyz 1 1 1", false, {}},
    {"commas", "1,1,1", false, {}},
    {"slashes", "1/1/1", false, {}},
    {"letters behind the first", "1abc 2 3", false, {}},
    {"word in the middle", "1 x 1", false, {}},
    {"word at the end", "1 1 x", false, {}},
    {"beyond double", "1 1 1e400", false, {}},
};

TEST(MTLReader, ReadsColors)
{
    for (const ColorCase &row : ColorCases) {
        for (const std::string keyword : {"Ka", "Kd", "Ks"}) {
            SCOPED_TRACE(keyword + ", " + row.name);
            Lines reader(keyword + " " + row.text + "\n");
            reader->next();
            EXPECT_EQ(reader->parseLine(), row.ok);
            if (row.ok) {
                EXPECT_THAT(floatsOf(reader->getKs()), areFloats(row.color));
            }
        }
    }
}

struct ScalarCase
{
    const char *text;
    bool ok;
    float value;
};

/// As many characters are taken as make a number, and any may follow. A double is
/// rounded to float as it is: other limits than on the lines of an OBJ file.
const ScalarCase ScalarCases[] = {
    {"0.5", true, 0.5f},
    {"+5", true, 5.0f},
    {"-.5", true, -0.5f},
    {"5.", true, 5.0f},
    {"1E3", true, 1000.0f},
    {"25e-2", true, 0.25f},
    {"007", true, 7.0f},
    {"10abc", true, 10.0f},
    {"1f", true, 1.0f},
    {"1,500", true, 1.0f},
    {"0x10", true, 0.0f},
    {"1-2", true, 1.0f},
    {"1..2", true, 1.0f},
    {"1.25.3", true, 1.25f},
    {"1.e5", true, 1.0f},
    {"1e2.5", true, 100.0f},
    {"1d3", true, 1.0f},
    {"1_000", true, 1.0f},
    {"-halo 60", false, 0.0f},
    {"3.4028234663852886e38", true, 0x1.fffffep127f},
    {"3.4028235e38", true, 0x1.fffffep127f}, // nearer to it than to 2^128
    {"1e39", true, Infinity},
    {"-1e39", true, -Infinity},
    {"1e400", false, 0.0f},
    {"-1e400", false, 0.0f},
    {"1.4e-45", true, 0x1p-149f},
    {"7e-46", true, 0.0f},
    {"-7e-46", true, -0.0f},
    {"-0", true, -0.0f},
    {"1e-400", false, 0.0f},
    {"1.00000005960464477539062500000001", true, 1.0f},
    {"nan", true, NaN},
    {"-nan", true, NaN},
    {"NaN", true, NaN},
    {"inf", true, Infinity},
    {"-inf", true, -Infinity},
    {"infinity", true, Infinity},
    {"1e", false, 0.0f},
    {"1e+", false, 0.0f},
    {"", false, 0.0f},
    {"+", false, 0.0f},
    {"-", false, 0.0f},
    {".", false, 0.0f},
    {"e5", false, 0.0f},
    {"--1", false, 0.0f},
    {"x", false, 0.0f},
    {"# 1", false, 0.0f},
    {"\u22122", false, 0.0f},
    {"\u0661", false, 0.0f},
    {"\u200b1", false, 0.0f},
};

TEST(MTLReader, ReadsScalars)
{
    for (const ScalarCase &row : ScalarCases) {
        for (const std::string keyword : {"Ns", "d"}) {
            SCOPED_TRACE(keyword + " " + row.text);
            Lines reader(keyword + " " + row.text + "\n");
            reader->next();
            EXPECT_EQ(reader->parseLine(), row.ok);
            if (row.ok) {
                EXPECT_THAT(std::vector<float>{reader->getNs()}, areFloats({row.value}));
                EXPECT_THAT(std::vector<float>{reader->getD()}, areFloats({row.value}));
            }
        }
    }
}

TEST(MTLReader, GivesAScalarAsTheFirstOfThree)
{
    Lines reader("Kd 1 2 3\nNs 5\n");
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getNs(), 1.0f);
    EXPECT_EQ(reader->getD(), 1.0f);
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    EXPECT_THAT(floatsOf(reader->getKa()), areFloats({5, 2, 3}));
}

TEST(MTLReader, KnowsUnicodeBlanks)
{
    for (const BlankCase &row : blankCases()) {
        SCOPED_TRACE(row.name);
        Lines reader(row.text + "d" + row.text + "2\n");
        reader->next();
        EXPECT_EQ(reader->getLineType() == D && reader->parseLine() && reader->getD() == 2.0f,
                  row.isBlank);

        const std::string joinedText = "a" + row.text + "b";
        const QString joined =
            QString::fromUtf8(joinedText.data(), static_cast<int>(joinedText.size()));
        Lines named("newmtl a" + row.text + "b\n");
        named->next();
        EXPECT_TRUE(named->parseLine());
        EXPECT_EQ(named->getNewmtlName(), row.isBlank ? QStringLiteral("a") : joined);
    }
}

struct NameCase
{
    const char *name;
    std::string text;
    bool ok;
    QString result;
};

const NameCase NewmtlCases[] = {
    {"name", "red", true, QStringLiteral("red")},
    {"name with a blank", "red metal", true, QStringLiteral("red")},
    {"comment in the name", "a#b", true, QStringLiteral("a")},
    {"comment behind the name", "a # b", true, QStringLiteral("a")},
    {"number", "10", true, QStringLiteral("10")},
    {"letters beyond ASCII", "gr\u00fcn\u2713", true, QStringLiteral("gr\u00fcn\u2713")},
    {"a CR is taken out", "re\rd", true, QStringLiteral("red")},
    {"no name", "", false, {}},
    {"no name but blanks", "   ", false, {}},
    {"no name but a comment", "# red", false, {}},
};

TEST(MTLReader, ReadsNames)
{
    for (const NameCase &row : NewmtlCases) {
        SCOPED_TRACE(row.name);
        Lines reader("newmtl " + row.text + "\n");
        reader->next();
        EXPECT_EQ(reader->getLineType(), NEWMTL);
        EXPECT_EQ(reader->parseLine(), row.ok);
        if (row.ok) {
            EXPECT_EQ(reader->getNewmtlName(), row.result);
        }
    }
}

const NameCase MapCases[] = {
    {"relative", "tex/wood.png", true, QStringLiteral("/m/tex/wood.png")},
    {"absolute", "/abs/wood.png", true, QStringLiteral("/abs/wood.png")},
    {"upwards, not cleaned", "../x.png", true, QStringLiteral("/m/../x.png")},
    {"options are not understood", "-s 2 2 1 wood.png", true, QStringLiteral("/m/-s")},
    {"name with a blank", "dark wood.png", true, QStringLiteral("/m/dark")},
    {"comment in the name", "a#b.png", true, QStringLiteral("/m/a")},
    {"backslash", "tex\\wood.png", true, QStringLiteral("/m/tex\\wood.png")},
    {"no name", "", false, {}},
    {"no name but a comment", "# a", false, {}},
};

TEST(MTLReader, ResolvesTexturePaths)
{
    for (const NameCase &row : MapCases) {
        for (const std::string keyword : {"map_Kd", "map_Ks", "map_Ka", "map_Ns"}) {
            SCOPED_TRACE(keyword + ", " + row.name);
            Lines reader(keyword + " " + row.text + "\n");
            reader->setBaseDir(QStringLiteral("/m"));
            reader->next();
            EXPECT_EQ(reader->parseLine(), row.ok);
            if (row.ok) {
                EXPECT_EQ(reader->getMapKdPath(), row.result);
            }
        }
    }
}

TEST(MTLReader, ResolvesAgainstTheLastDirectorySet)
{
    Lines reader("map_Kd a.png\nmap_Kd a.png\n");
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getMapKdPath(), QDir::current().absoluteFilePath(QStringLiteral("a.png")));
    reader->setBaseDir(QStringLiteral("/one"));
    reader->setBaseDir(QStringLiteral("/two/"));
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getMapKdPath(), QStringLiteral("/two/a.png"));
}

/// A line that fails says nothing about the next one.
TEST(MTLReader, GoesOnAfterABadLine)
{
    Lines reader("Kd x\nKd 1 1\nKd 1 2 3\n");
    reader->next();
    EXPECT_FALSE(reader->parseLine());
    reader->next();
    EXPECT_FALSE(reader->parseLine());
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    EXPECT_THAT(floatsOf(reader->getKd()), areFloats({1, 2, 3}));
}

} // namespace
