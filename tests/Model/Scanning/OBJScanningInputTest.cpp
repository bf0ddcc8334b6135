// OBJ files that are odd as files: encodings, sizes, and devices that misbehave.
#include "support/ReadOBJ.h"
#include "support/ScopedLocaleCodec.h"
#include "support/TemporaryModel.h"

#include "Scanning/LineDecoding.h"

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>

#include <algorithm>
#include <string>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;
using ::testing::IsEmpty;

constexpr int PieceBytes = 16384; // what QTextStream reads at a time

/// Expects the same result on both paths, and that the scan needs no line reader.
void expectSame(const char *name, const QByteArray &text)
{
    EXPECT_THAT(differences(readByLines(text), readAsBytes(text)), IsEmpty()) << name << ":\n"
                                                                              << printable(text);
}

/// Names, blanks and minus signs of other alphabets, sound and broken.
const QByteArray Letters =
    "v 1 2 3\xc3\xa4\nv \xe2\x88\x92"
    "1 2 3\nv\xc2\xa0"
    "1\xc2\xa0"
    "2 3\nv 1\xe3\x80\x80"
    "2 3\n"
    "usemtl \xc3\xa4\nf 1 1 1\nusemtl \xe4\nf 1 1 1\nusemtl \xe2\x82\nf 1 1 1\n"
    "\xc2\xa0v 1 2 3\n\x85v 4 5 6\n\xa0# x\n# \xc3\xa4 \xff\nf 1\xa0"
    "1\x85"
    "1\n"
    "\xc3\xb6 1\nvt 1 2 \xff\nvn 1 2 3 # \xe4\nf 1/1/1 1/1/1 1/1/1 # \xe4\nf 1 1 \xe4\nf 1 1 "
    "1\xe4\n"
    "o \xe4\nv\xe4 1 2 3\nv 1 2 3 \xe2\x82";

TEST(OBJScanningEncodings, LocalesDecideWhatBytesMean)
{
    for (const char *codec :
         {"UTF-8", "ISO-8859-1", "ISO-8859-15", "US-ASCII", "windows-1252", "KOI8-R"}) {
        const ScopedLocaleCodec locale(codec);
        expectSame(codec, Letters);
    }
}

/// What is left of a sequence at the end of a file is no character.
TEST(OBJScanningEncodings, SequencesCutOffByTheEndOfTheFile)
{
    const ScopedLocaleCodec locale("UTF-8");
    for (const char *text :
         {"v 1 2 3\xe2\x82", "v 1 2 3\nf 1 1 1\xc3", "v 1 2 3\nf 1 1 1\xf0\x9f\x98", "v 1 2 3\xff",
          "v\xe2", "v 1\xe2\x82\r", "v 1\xe2\x82\r\n"})
        expectSame("cut", text);
}

TEST(OBJScanningEncodings, AByteOrderMarkMakesItUTF8)
{
    for (const char *codec : {"UTF-8", "ISO-8859-1"}) {
        const ScopedLocaleCodec locale(codec);
        const QByteArray mark = "\xef\xbb\xbf";
        expectSame("mark", mark + Letters);
        expectSame("mark and number", mark + "v 1 2 3\n");
        expectSame("mark twice", mark + mark + "v 1 2 3\nv 4 5 6\n");
        expectSame("mark later", "v 1 2 3\n" + mark + "v 4 5 6\n");
        expectSame("mark in a number", "v 1" + mark + " 2 3\n");
        expectSame("mark alone", mark);
        expectSame("mark and line feed", mark + "\n");
        expectSame("part of a mark", mark.left(2));
        expectSame("part of a mark in a line", mark.left(2) + "\nv 1 2 3\n");
    }
}

TEST(OBJScanningEncodings, OthersAreLeftToTheLineReader)
{
    const QByteArray utf16("\xff\xfev\0 \0"
                           "1\0\n\0",
                           10);
    EXPECT_EQ(readAsBytes(utf16).outcome, OBJScanOutcome::NeedsLineReader);
    const ScopedLocaleCodec locale("Shift_JIS");
    EXPECT_EQ(readAsBytes("v 1 2 3\n").outcome, OBJScanOutcome::NeedsLineReader);
}

TEST(OBJScanningEncodings, AMarkWhereTheStreamMaySwallowItIsLeftToTheLineReader)
{
    const ScopedLocaleCodec locale("UTF-8");
    const QByteArray mark = "\xef\xbb\xbf";
    for (const int distance : {-1, 0, 1, 100}) {
        const QByteArray text =
            QByteArray(PieceBytes + distance - 1, '#') + "\n" + mark + "v 1 2 3\nv 4 5 6\n";
        const ReadOBJ bytes = readAsBytes(text);
        if (distance <= 0)
            EXPECT_EQ(bytes.outcome, OBJScanOutcome::NeedsLineReader) << distance;
        else
            EXPECT_THAT(differences(readByLines(text), bytes), IsEmpty()) << distance;
    }
}

/// Names that lie across the border of two pieces, at every distance.
TEST(OBJScanningEncodings, LettersAtTheBorderOfPieces)
{
    const ScopedLocaleCodec locale("UTF-8");
    for (const char *name : {"\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x98\x80", "\xe2\x82",
                             "\xf0\x9f\x98", "\xf0\x9f", "\xc3", "\xff", "\xc0\xaf"}) {
        const TemporaryModel model;
        // Replacement characters are counted: each name is a material of its own.
        model.write(QStringLiteral("m.mtl"), QByteArray("newmtl a") + name +
                                                 "\nnewmtl a\xff\nnewmtl a\xff\xff\n"
                                                 "newmtl a\xff\xff\xff\n");
        for (int distance = -6; distance <= 1; ++distance) {
            const QByteArray head = "v 1 2 3\nmtllib m.mtl\n";
            const QByteArray text = head +
                                    QByteArray(PieceBytes + distance - head.size() - 9, '#') +
                                    "\nusemtl a" + name + "\nf 1 1 1\nv 4 5 6\n";
            const QString file = model.write(QStringLiteral("m.obj"), text);
            QFile forBytes(file);
            QFile forLines(file);
            const ReadOBJ bytes = readAsBytes(forBytes, model.directory());
            EXPECT_THAT(differences(readByLines(forLines, model.directory()), bytes), IsEmpty())
                << printable(name) << " at " << distance;
            const std::vector<PlainGroup> &groups = bytes.model.groups;
            EXPECT_EQ(std::count_if(groups.begin(), groups.end(),
                                    [](const PlainGroup &group) { return !group.faces.empty(); }),
                      1);
        }
    }
}

TEST(OBJScanningLimits, TooManyOfAnything)
{
    const struct
    {
        const char *name;
        const char *line;
        std::size_t elements; ///< that a line adds
    } rows[] = {
        {"positions", "v 1 2 3\n", 3},
        {"normals", "vn 1 2 3\n", 3},
        {"coordinates", "vt 1 2\n", 2},
        {"corners, each of a position", "f 1 1 1\n", 9},
        {"faces", "f\n", 1},
        {"corners, odd", "f +1 1\n", 6},
    };
    for (const auto &row : rows) {
        OBJScanLimits limits;
        limits.streamElements = 7 * row.elements;
        const QByteArray line = row.line;
        EXPECT_EQ(readAsBytes(line.repeated(7), limits).outcome, OBJScanOutcome::Finished)
            << row.name;
        EXPECT_EQ(readAsBytes(line.repeated(8), limits).outcome, OBJScanOutcome::LimitExceeded)
            << row.name;
        limits.chunkBytes = 5;
        EXPECT_EQ(readAsBytes(line.repeated(100), limits).outcome, OBJScanOutcome::LimitExceeded)
            << row.name;
    }
}

TEST(OBJScanningLimits, StreamsHoldWhatTheLimitsLetThrough)
{
    // A QByteArray holds less than 2^31 bytes with its header.
    EXPECT_LE(OBJScanLimits().streamElements * 4, (std::size_t(1) << 31) - 1 - 64);
    EXPECT_LE(OBJScanLimits().corners() * 3 * 4, (std::size_t(1) << 31) - 1 - 64);
    EXPECT_LE(OBJScanLimits().lineBytes + OBJScanLimits().chunkBytes, (std::size_t(1) << 30) - 64);
}

TEST(OBJScanningLimits, LinesThatAreTooLong)
{
    OBJScanLimits limits;
    limits.chunkBytes = 16;
    limits.lineBytes = 1000;
    const QByteArray after = "v 1 2 3\n";
    EXPECT_EQ(readAsBytes('#' + QByteArray(900, 'x') + '\n' + after, limits).outcome,
              OBJScanOutcome::Finished);
    EXPECT_EQ(readAsBytes('#' + QByteArray(1100, 'x') + '\n' + after, limits).outcome,
              OBJScanOutcome::LimitExceeded);
    EXPECT_EQ(readAsBytes(after + QByteArray(1100, 'x'), limits).outcome,
              OBJScanOutcome::LimitExceeded);
}

TEST(OBJScanningLimits, TheLongestLineThatIsNotTooLong)
{
    OBJScanLimits limits;
    limits.chunkBytes = 1; // by which a line may be longer
    limits.lineBytes = 10;
    EXPECT_EQ(readAsBytes(QByteArray(10, 'x') + '\n', limits).outcome, OBJScanOutcome::Finished);
    EXPECT_EQ(readAsBytes(QByteArray(11, 'x') + '\n', limits).outcome,
              OBJScanOutcome::LimitExceeded);
}

/// Looking again and again at the begin of the line would take hours.
TEST(OBJScanningLimits, LongLinesTakeLinearTime)
{
    constexpr int count = 2000000;
    OBJScanLimits limits;
    limits.chunkBytes = 32;
    const QByteArray face = "v 1 2 3\nf" + QByteArray(" 1 -1/1").repeated(count / 2);
    const ReadOBJ bytes = readAsBytes(face, limits);
    EXPECT_EQ(bytes.model.cornerCounts, std::vector<std::uint32_t>{count});
    EXPECT_EQ(bytes.model.positions().indices.size(), std::size_t(count));
    for (const char c : {'#', 'x', ' ', '1', '\r'}) {
        const QByteArray line(8000000, c);
        EXPECT_EQ(readAsBytes(line + "\nv 1 2 3\n", limits).model.positions().values.size(), 3u);
        EXPECT_EQ(readAsBytes("v 1 2 " + line + "\n", limits).model.positions().values.size(), 3u);
    }
}

/// Gives its bytes as the test wants.
class OddDevice : public QIODevice
{
public:
    OddDevice(const QByteArray &bytes, qint64 mostAtOnce) : _bytes(bytes), _mostAtOnce(mostAtOnce)
    {}

    bool sequential = false;
    qint64 endsEarlyAt = -1; ///< gives no more from there on, though it has more
    qint64 failsAt = -1;
    qint64 sizeClaimed = -1;
    int reads = 0;

    bool isSequential() const override { return sequential; }
    qint64 size() const override { return sizeClaimed < 0 ? _bytes.size() : sizeClaimed; }

protected:
    qint64 readData(char *target, qint64 most) override
    {
        ++reads;
        const qint64 place = sequential ? _given : pos(); // a stream has no position
        if (failsAt >= 0 && place >= failsAt)
            return -1;
        const qint64 end = endsEarlyAt < 0 ? _bytes.size() : endsEarlyAt;
        const qint64 count = std::max<qint64>(0, std::min({most, _mostAtOnce, end - place}));
        std::copy_n(_bytes.constData() + place, count, target);
        _given += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray _bytes;
    const qint64 _mostAtOnce;
    qint64 _given = 0;
};

const QByteArray Model = "v 1 2 3\nv 4 5 6\nf 1 2 1\nv 7 8 9\n";

TEST(OBJScanningDevices, GiveAsMuchAtOnceAsTheyLike)
{
    for (const qint64 most : {1, 2, 3, 100}) {
        OddDevice device(Model, most);
        EXPECT_THAT(differences(readByLines(Model), readAsBytes(device)), IsEmpty()) << most;
    }
}

TEST(OBJScanningDevices, AreReadToWhereTheyEnd)
{
    for (const int end : {0, 1, 5, 8, 20}) {
        OddDevice shrunk(Model, 1000);
        shrunk.endsEarlyAt = end;
        EXPECT_THAT(differences(readByLines(Model.left(end)), readAsBytes(shrunk)), IsEmpty())
            << end;
        OddDevice broken(Model, end > 0 ? end : 1);
        broken.failsAt = end;
        EXPECT_THAT(differences(readByLines(Model.left(end)), readAsBytes(broken)), IsEmpty())
            << end;
    }
    OddDevice grown(Model, 1000);
    grown.sizeClaimed = 10; // when it was opened
    EXPECT_THAT(differences(readByLines(Model), readAsBytes(grown)), IsEmpty());
}

/// A file of size 0 that has bytes all the same is empty to a stream.
TEST(OBJScanningDevices, AreEmptyWhenTheySaySo)
{
    OddDevice device(Model, 1000);
    device.sizeClaimed = 0;
    EXPECT_THAT(differences(readByLines(QByteArray()), readAsBytes(device)), IsEmpty());
}

/// What a stream of UTF-16 holds only a QTextStream can tell, which needs its first bytes.
TEST(OBJScanningDevices, ThatCannotBeReadAsBytesAreAsTheyWere)
{
    const QByteArray text("\xff\xfev\0 \x001\0\n\0", 10);
    OddDevice pipe(text, 1000);
    pipe.sequential = true;
    EXPECT_EQ(readAsBytes(pipe).outcome, OBJScanOutcome::NeedsLineReader);
    EXPECT_EQ(pipe.readAll(), text);
}

/// As regular files of the same bytes, however few of them come at a time.
TEST(OBJScanningDevices, MayBeStreams)
{
    for (const qint64 mostAtOnce : {1, 3, 1000}) {
        OddDevice pipe(Model, mostAtOnce);
        pipe.sequential = true;
        EXPECT_THAT(differences(readByLines(Model), readAsBytes(pipe)), IsEmpty()) << mostAtOnce;
    }
    OddDevice empty(QByteArray(), 1);
    empty.sequential = true;
    EXPECT_THAT(differences(readByLines(QByteArray()), readAsBytes(empty)), IsEmpty());
}

/// U+FEFF at the begin of a piece of QTextStream's is a byte-order mark to it, but nobody knows
/// where the pieces of a stream begin.
TEST(OBJScanningDevices, NeedNoLineReaderAsStreams)
{
    const QByteArray bom =
        QByteArray(LineDecoder::PieceBytes - 8, '\n') + "usemtl \n\xef\xbb\xbfv 1 2 3\n";
    OddDevice file(bom, 100000);
    EXPECT_EQ(readAsBytes(file).outcome, OBJScanOutcome::NeedsLineReader);
    OddDevice pipe(bom, 100000);
    pipe.sequential = true;
    EXPECT_EQ(readAsBytes(pipe).outcome, OBJScanOutcome::Finished);
}

/// Of files of 20 MB and more, arrays get their room beforehand.
TEST(OBJScanningSizes, AFileOfManyMegabytes)
{
    constexpr int copies = 440000;
    const QByteArray copy = "v 1 1 1\nvn 1 1 1\nvt 1 1\nf 1/1/1 1/1/1 1/1/1 1/1/1\n";
    const ReadOBJ read = readAsBytes(copy.repeated(copies));
    ASSERT_EQ(read.outcome, OBJScanOutcome::Finished);

    const auto holds = [](const auto &all, size_t perCopy, auto value) {
        return all.size() == perCopy * copies &&
               std::count(all.begin(), all.end(), value) == std::ptrdiff_t(all.size());
    };
    EXPECT_TRUE(holds(read.model.positions().values, 3, 1.0f));
    EXPECT_TRUE(holds(read.model.normals().values, 3, 1.0f));
    EXPECT_TRUE(holds(read.model.texCoords().values, 2, 1.0f));
    EXPECT_TRUE(holds(read.model.positions().indices, 4, 0u));
    EXPECT_TRUE(holds(read.model.normals().indices, 4, 0u));
    EXPECT_TRUE(holds(read.model.texCoords().indices, 4, 0u));
    EXPECT_TRUE(holds(read.model.cornerCounts, 1, 4u));
}

} // namespace
} // namespace OrvTest
