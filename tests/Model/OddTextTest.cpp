// Text as no exporter should write it: encodings, blanks, line ends, and numbers and lines
// of any length. Both paths must make the same of it, in time that grows with the text.
#include "support/BothPaths.h"
#include "support/GLTest.h"
#include "support/ScopedLocaleCodec.h"
#include "support/TemporaryModel.h"

#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include <gmock/gmock.h>

#include <QtCore/QTextCodec>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <memory>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

namespace {

const char Triangle[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

QByteArray encoded(const QString &text, const char *codec, bool withMark)
{
    const std::unique_ptr<QTextEncoder> encoder(
        QTextCodec::codecForName(codec)->makeEncoder(QTextCodec::IgnoreHeader));
    return encoder->fromUnicode((withMark ? QString(QChar(QChar::ByteOrderMark)) : QString()) +
                                text);
}

QByteArray utf8(const QString &text)
{
    return text.toUtf8();
}

/// The text with zero bytes that a literal has.
template <size_t Size>
QByteArray bytes(const char (&text)[Size])
{
    return QByteArray(text, Size - 1);
}

class OddText : public GLTest
{
protected:
    UploadedModel load(const QByteArray &text) const
    {
        return expectSameOnBothPaths(_files.write(QStringLiteral("odd.obj"), text));
    }

    /// The x of the first of three corners, of which it is told from the others.
    float number(const QByteArray &text) const
    {
        const UploadedModel outcome = load("v " + text + " 7 7\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        EXPECT_EQ(outcome.bundle().vertexCount, 3u);
        return outcome.bundle().vertexCount == 3 ? outcome.bundle().values("va_Vertex").at(0)
                                                 : std::nanf("");
    }

    TemporaryModel _files;
};

TEST_F(OddText, AMarkTellsTheEncoding)
{
    const ScopedLocaleCodec locale("UTF-8");
    const QString text = QLatin1String(Triangle);
    for (const char *codec : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        SCOPED_TRACE(codec);
        EXPECT_THAT(load(encoded(text, codec, true)).bundle().values("va_Vertex"),
                    ElementsAre(0, 0, 0, 1, 0, 0, 0, 1, 0));
    }
}

/// Every letter has zero bytes beside it, and "v" with one is no keyword.
TEST_F(OddText, WideTextWithoutAMarkIsNoModel)
{
    const ScopedLocaleCodec locale("UTF-8");
    const QString text = QLatin1String(Triangle);
    for (const char *codec : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        SCOPED_TRACE(codec);
        const UploadedModel outcome = load(encoded(text, codec, false));
        EXPECT_FALSE(outcome.isNull);
        EXPECT_EQ(outcome.bundles.size(), 0u);
    }
}

TEST_F(OddText, LibrariesHaveEncodingsOfTheirOwn)
{
    const ScopedLocaleCodec locale("UTF-8");
    const QString library = QString::fromUtf8("newmtl caf\xc3\xa9\nKd 1 0 0\n");
    const QByteArray model = "mtllib m.mtl\nusemtl caf\xc3\xa9\n" + QByteArray(Triangle);
    for (const char *codec : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        SCOPED_TRACE(codec);
        _files.write(QStringLiteral("m.mtl"), encoded(library, codec, true));
        EXPECT_THAT(load(model).bundle().materialNames(),
                    ElementsAre(QString::fromUtf8("caf\xc3\xa9")));
    }
}

/// What is no UTF-8 becomes the same replacement character in file and library.
TEST_F(OddText, Latin1InALocaleOfUTF8StillSelectsItsMaterial)
{
    const ScopedLocaleCodec locale("UTF-8");
    _files.write(QStringLiteral("m.mtl"), "newmtl caf\xe9\nKd 1 0 0\nnewmtl caf\xe8\nKd 0 1 0\n");
    const UploadedModel outcome =
        load("mtllib m.mtl\nusemtl caf\xe9\n" + QByteArray(Triangle) + "usemtl caf\xe8\nf 3 2 1\n");
    EXPECT_THAT(outcome.bundle().materialNames(),
                ElementsAre(QString::fromUtf8("caf\xef\xbf\xbd")));
    EXPECT_EQ(outcome.bundle().triangleCount(), 2) << "two names that cannot be told apart are one";
}

TEST_F(OddText, Latin1InItsOwnLocale)
{
    const ScopedLocaleCodec locale("ISO-8859-1");
    _files.write(QStringLiteral("m.mtl"), "newmtl caf\xe9\nnewmtl caf\xe8\n");
    const UploadedModel outcome = load("mtllib m.mtl\nusemtl caf\xe9\n" + QByteArray(Triangle));
    EXPECT_THAT(outcome.bundle().materialNames(), ElementsAre(QString::fromUtf8("caf\xc3\xa9")));
}

TEST_F(OddText, ZeroBytesBelongToTheirToken)
{
    _files.write(QStringLiteral("m.mtl"), bytes("newmtl a\0b\n"));
    const struct
    {
        const char *name;
        QByteArray text;
        int triangles;
    } rows[] = {
        {"in a name", bytes("mtllib m.mtl\nusemtl a\0b\n") + Triangle, 1},
        {"at the end of a name", bytes("mtllib m.mtl\nusemtl a\0\n") + Triangle, 0},
        {"in a keyword", bytes("v\0 0 0 0\n") + Triangle, 1},
        {"in an index", Triangle + bytes("f 1 2\0 3\n"), 1},
        {"in a library's name", bytes("mtllib m.mtl\0\n") + Triangle, -1},
        {"a line of its own", bytes("\0\n") + Triangle + bytes("\0"), 1},
        {"a million of them", QByteArray(1000000, '\0') + '\n' + Triangle, 1},
        {"between all lines", bytes("\0v 0 0 0\n\0v 1 0 0\n\0v 0 1 0\n\0f 1 2 3\n"), 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const UploadedModel outcome = load(row.text);
        EXPECT_EQ(outcome.isNull ? -1 : outcome.bundle().triangleCount(), row.triangles);
    }
}

TEST_F(OddText, CarriageReturnsAreNoLineEnds)
{
    QByteArray lone = Triangle;
    lone.replace('\n', '\r');
    EXPECT_THAT(load(lone).bundles, IsEmpty()) << "all of it is one line";
    for (const char *end : {"\r\n", "\n\r", "\r\r\n", "\n\r\n"}) {
        QByteArray text = Triangle;
        text.replace("\n", end);
        EXPECT_EQ(load(text).bundle().triangleCount(), 1);
    }
    EXPECT_EQ(number("2\r3"), 23.0f);
}

TEST_F(OddText, BlanksAreWhatUnicodeSaysTheyAre)
{
    const ScopedLocaleCodec locale("UTF-8");
    const auto modelWith = [](int blank) {
        return utf8(QString::fromLatin1(Triangle).replace(QLatin1Char(' '), QChar(blank)));
    };
    for (const int blank :
         {0x09,   0x0b,   0x0c,   0x85,   0xa0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
          0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200a, 0x2028, 0x2029, 0x202f, 0x205f, 0x3000}) {
        SCOPED_TRACE(testing::Message() << "U+" << std::hex << blank);
        EXPECT_EQ(load(modelWith(blank)).bundle().triangleCount(), 1);
    }
    for (const int other : {0x08, 0x1c, 0x180e, 0x200b, 0x2060, 0xfeff}) {
        SCOPED_TRACE(testing::Message() << "U+" << std::hex << other);
        EXPECT_EQ(load(modelWith(other)).bundle().triangleCount(), QChar(other).isSpace() ? 1 : 0);
    }
}

TEST_F(OddText, LinesOfAMillionTokens)
{
    _files.write(QStringLiteral("m.mtl"),
                 "newmtl a\nKd 1 0 0" + QByteArray(" 1").repeated(1000000) + "\nmap_Kd x.png" +
                     QByteArray(" y").repeated(1000000) + '\n');
    const struct
    {
        const char *name;
        QByteArray begin;
        QByteArray token;
        QByteArray end;
    } rows[] = {
        {"comment", "#", " x", ""},
        {"unknown keyword", "g", " x", ""},
        {"position", "v 5 5 5", " 1", ""},
        {"normal that nobody uses", "usemtl nobody\nf 1 2 3\n#", " 1", ""},
        {"face that does not parse", "f", " 1", " x"},
        {"face that nobody draws", "usemtl nobody\nf", " 1/2/3", ""},
        {"face of negative indices that nobody draws", "usemtl nobody\nf", " -1", ""},
        {"face of signed indices that nobody draws", "usemtl nobody\nf", " +1", ""},
        {"face that ends in a comment", "f 1 2 3 #", " 1", ""},
        {"material", "usemtl nobody", " x", ""},
        {"library", "mtllib m.mtl", " none.mtl", ""},
        {"odd blanks", "g", "\xc2\xa0x", ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const bool drawsOne = row.begin == "f 1 2 3 #";
        const UploadedModel outcome =
            load(Triangle + row.begin + row.token.repeated(1000000) + row.end + '\n');
        EXPECT_EQ(outcome.error, UploadedModel::untouchedError());
        EXPECT_EQ(outcome.bundle().triangleCount(), drawsOne ? 2 : 1);
    }
}

TEST_F(OddText, NumbersOfTenThousandDigits)
{
    const QByteArray zeros(10000, '0');
    const QByteArray nines(10000, '9');
    // Halfway between 1 and the next float, 1 + 2^-24, and a little more: the double
    // between is 1 + 2^-24 itself, and the second rounding goes to the even float.
    const QByteArray half = "1.000000059604644775390625";
    const struct
    {
        const char *name;
        QByteArray text;
        float value;
    } rows[] = {
        {"leading zeros", zeros + "12", 12.0f},
        {"trailing zeros", "12." + zeros, 12.0f},
        {"zeros behind the point", "0." + zeros + "1", 0.0f},
        {"zeros behind the point, and an exponent", "0." + zeros + "1e10001", 1.0f},
        {"zeros before the point, and an exponent", "1" + zeros + "e-10000", 1.0f},
        {"too large", nines, HUGE_VALF},
        {"nines behind the point", "0." + nines, 1.0f},
        {"halfway", half + zeros, 1.0f},
        {"a little beyond halfway", half + zeros + "1", 1.0f},
        {"an exponent of zeros", "12e" + zeros, 12.0f},
        {"an exponent of nines", "12e" + nines, HUGE_VALF},
        {"a negative exponent of nines", "12e-" + nines, 0.0f},
        {"no number after all", nines + "x", 0.0f},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(number(row.text), row.value);
        EXPECT_EQ(number('-' + row.text), -row.value);
    }
}

TEST_F(OddText, IndicesOfTenThousandDigits)
{
    const QByteArray zeros(10000, '0');
    const QByteArray nines(10000, '9');
    const QByteArray points = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    EXPECT_EQ(load(points + "f " + zeros + "1 2 3\n").bundle().triangleCount(), 1);
    EXPECT_EQ(load(points + "f -" + zeros + "1 2 1\n").bundle().triangleCount(), 1);
    EXPECT_THAT(load(points + "f 1 2 " + nines + "\n").bundles, IsEmpty()) << "a face is dropped";
    EXPECT_THAT(load(points + "f 1 2 -" + nines + "\n").bundles, IsEmpty());
    EXPECT_THAT(load(points + "f 1 2 3/" + nines + "\n").bundles, IsEmpty());
}

/// Libraries read numbers with another reader; it must take any length.
TEST_F(OddText, LibrariesOfLongNumbers)
{
    const QByteArray digits(10000, '1');
    _files.write(QStringLiteral("m.mtl"), "newmtl a\nKd " + digits + " 0." + digits + " 1e" +
                                              digits + "\nNs " + digits + "\nd -" + digits + '\n');
    const UploadedModel outcome = load("mtllib m.mtl\nusemtl a\n" + QByteArray(Triangle));
    EXPECT_THAT(outcome.bundle().materialNames(), ElementsAre(QStringLiteral("a")));
}

/// The least of three, in seconds of this thread.
double loadingTime(const QString &fileName, LoaderPath path)
{
    const auto now = [] {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + 1e-9 * double(time.tv_nsec);
    };
    double least = HUGE_VAL;
    for (int i = 0; i < 3; ++i) {
        const double begin = now();
        EXPECT_FALSE(loadByPath(fileName, path).isNull);
        least = std::min(least, now() - begin);
    }
    return least;
}

/// Eight times the text must not take much more than eight times as long; what looks
/// again and again at the same bytes takes 64 times as long.
TEST_F(OddText, TakesTimeInProportion)
{
    const struct
    {
        const char *name;
        QByteArray begin;
        QByteArray part;
    } rows[] = {
        {"tokens of a comment", "#", " x"},
        {"tokens of a position", "v", " 1"},
        {"corners that do not parse", "f x", " 1"},
        {"odd corners", "usemtl x\nf", " +1"},
        {"names", "usemtl", " x"},
        {"digits", "v 0.", "1"},
        {"digits of an index", "f ", "1"},
        {"zero bytes", "", QByteArray(1, '\0')},
        {"carriage returns", "v 1", "\r"},
        {"blanks", "", " "},
        {"other blanks", "", "\xe3\x80\x80"},
        {"letters", "usemtl ", "\xc3\xa4"},
        {"broken letters", "usemtl ", "\xe4"},
        {"slashes", "f 1", "/"},
        {"empty lines", "", "\n"},
        {"lines of zero bytes", "", bytes("\0\n")},
    };
    constexpr int count = 60000;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const QString small =
            _files.write(QStringLiteral("small.obj"), row.begin + row.part.repeated(count) + '\n');
        const QString large = _files.write(QStringLiteral("large.obj"),
                                           row.begin + row.part.repeated(8 * count) + '\n');
        for (const LoaderPath path : {LoaderPath::Fast, LoaderPath::Lines})
            EXPECT_LT(loadingTime(large, path), 24 * loadingTime(small, path) + 0.02);
    }
}

} // namespace
