#include "support/QtPrinting.h"
#include "support/TextReader.h"

#include <OrvModel/OBJReader.h>

#include <gtest/gtest.h>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using Lines = TextReader<OBJReader>;

struct NameCase
{
    const char *name;
    std::string line;
    QString text;
};

const NameCase UsemtlCases[] = {
    {"name", "usemtl red", QStringLiteral("red")},
    {"name with a blank", "usemtl red metal", QStringLiteral("red")},
    {"no name", "usemtl", QString()},
    {"no name but blanks", "usemtl   ", QString()},
    {"comment sign in the name", "usemtl a#b", QStringLiteral("a#b")},
    {"comment sign as the name", "usemtl # none", QStringLiteral("#")},
    {"path as the name", "usemtl a/b", QStringLiteral("a/b")},
    {"letters beyond ASCII", "usemtl gr\u00fcn\u2713\U0001f600",
     QString::fromUtf8("gr\u00fcn\u2713\U0001f600")},
    {"invalid bytes",
     "usemtl a\xff"
     "b",
     QStringLiteral("a\ufffdb")},
    {"a CR is taken out", "usemtl re\rd", QStringLiteral("red")},
    {"a name as long as a file", "usemtl " + std::string(1000000, 'x'),
     QString(1000000, QLatin1Char('x'))},
};

TEST(OBJReaderNames, ReadsMaterialNames)
{
    for (const NameCase &row : UsemtlCases) {
        SCOPED_TRACE(row.name);
        Lines reader("usemtl before\n" + row.line + "\n");
        EXPECT_TRUE(reader->parseLine());
        reader->next();
        EXPECT_TRUE(reader->parseLine());
        EXPECT_EQ(reader->getUsemtlName(), row.text);
    }
}

const NameCase MtllibCases[] = {
    {"relative", "mtllib a.mtl", QStringLiteral("/models/a.mtl")},
    {"only the first of two", "mtllib a.mtl b.mtl", QStringLiteral("/models/a.mtl")},
    {"absolute", "mtllib /abs/x.mtl", QStringLiteral("/abs/x.mtl")},
    {"in a directory", "mtllib lib/a.mtl", QStringLiteral("/models/lib/a.mtl")},
    {"upwards, not cleaned", "mtllib ../a.mtl", QStringLiteral("/models/../a.mtl")},
    {"beside, not cleaned", "mtllib ./a.mtl", QStringLiteral("/models/./a.mtl")},
    {"backslash", "mtllib lib\\a.mtl", QStringLiteral("/models/lib\\a.mtl")},
    {"comment sign", "mtllib a#1.mtl", QStringLiteral("/models/a#1.mtl")},
    {"quotation marks", "mtllib \"a b.mtl\"", QStringLiteral("/models/\"a")},
    {"tilde", "mtllib ~/a.mtl", QStringLiteral("/models/~/a.mtl")},
    {"no name: the directory", "mtllib", QStringLiteral("/models")},
};

TEST(OBJReaderNames, ResolvesLibraryPaths)
{
    for (const NameCase &row : MtllibCases) {
        SCOPED_TRACE(row.name);
        Lines reader(row.line + "\n");
        reader->setBaseDir(QStringLiteral("/models"));
        EXPECT_TRUE(reader->parseLine());
        EXPECT_EQ(reader->getMtllibPath(), row.text);
    }
}

TEST(OBJReaderNames, ResolvesAgainstTheLastDirectorySet)
{
    Lines reader("mtllib a.mtl\n");
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getMtllibPath(), QDir::current().absoluteFilePath(QStringLiteral("a.mtl")));
    reader->setBaseDir(QStringLiteral("/one"));
    reader->setBaseDir(QStringLiteral("/two/"));
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getMtllibPath(), QStringLiteral("/two/a.mtl"));
}

/// Names that stand for nothing do not take the place of parsed ones.
TEST(OBJReaderNames, KeepsTheNameUntilTheNextIsParsed)
{
    Lines reader("usemtl red\nv 1 2 3\nf 1\nusemtl blue\n");
    EXPECT_TRUE(reader->parseLine());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(reader->getUsemtlName(), QStringLiteral("red"));
        reader->next();
    }
    EXPECT_EQ(reader->getUsemtlName(), QStringLiteral("red"));
    EXPECT_TRUE(reader->parseLine());
    EXPECT_EQ(reader->getUsemtlName(), QStringLiteral("blue"));
}

TEST(OBJReaderNames, ReadsOtherEncodingsByTheirMark)
{
    const QString text = QStringLiteral("usemtl gr\u00fcn\n");
    for (const char *codec : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        SCOPED_TRACE(codec);
        QByteArray bytes;
        {
            QTextStream out(&bytes);
            out.setCodec(codec);
            out.setGenerateByteOrderMark(true);
            out << text;
        }
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QTextStream stream(&buffer);
        OBJReader reader(stream);
        ASSERT_EQ(reader.getLineType(), int(OBJReader::LINE_USEMTL));
        EXPECT_TRUE(reader.parseLine());
        EXPECT_EQ(reader.getUsemtlName(), QStringLiteral("gr\u00fcn"));
    }
}

} // namespace
