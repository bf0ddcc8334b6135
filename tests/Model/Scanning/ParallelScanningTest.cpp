// Files read by several threads in small pieces against the same files on one thread.
#include "reference/ModelFiles.h"
#include "reference/ModelGenerator.h"
#include "support/RandomOBJText.h"
#include "support/ReadOBJ.h"
#include "support/TemporaryModel.h"
#include "support/WorkThreads.h"

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <stdexcept>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;
using ::testing::IsEmpty;

constexpr std::uint32_t Seed = 271828;
constexpr int ThreadCounts[] = {2, 3, 7, 16};

/// Pieces of a few lines, for any file.
OBJScanLimits smallPieces(std::size_t bytes)
{
    OBJScanLimits limits;
    limits.pieceBytes = bytes;
    limits.threadsFromBytes = 0;
    return limits;
}

/// Gives its bytes a few at a time, and cannot go back.
class Pipe : public QIODevice
{
public:
    explicit Pipe(const QByteArray &bytes) : _bytes(bytes) {}

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *target, qint64 most) override
    {
        const qint64 count = std::min<qint64>({most, 1000, _bytes.size() - _given});
        std::copy_n(_bytes.constData() + _given, count, target);
        _given += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray _bytes;
    qint64 _given = 0;
};

/// What is found must be the same on any threads, in pieces of any size.
void expectSame(const QByteArray &text, const ReadOBJ &expected, Dice &dice)
{
    const TemporaryModel files;
    const QString path = files.write(QStringLiteral("model.obj"), text);
    for (const int threads : ThreadCounts) {
        const auto pieceBytes =
            static_cast<std::size_t>(dice.between(2, dice.oneIn(2) ? 50 : 1000));
        const std::string place = std::to_string(threads) + " threads, pieces of " +
                                  std::to_string(pieceBytes) + " bytes:\n" + printable(text);
        WorkThreads crew(threads);
        crew.disturb(static_cast<std::uint32_t>(dice.below(1 << 30)));
        QFile file(path);
        EXPECT_THAT(
            differences(expected, readAsBytes(file, {}, smallPieces(pieceBytes), &crew.work())),
            IsEmpty())
            << "a file, " << place;
        QBuffer buffer;
        buffer.setData(text);
        EXPECT_THAT(
            differences(expected, readAsBytes(buffer, {}, smallPieces(pieceBytes), &crew.work())),
            IsEmpty())
            << "a buffer, " << place;
    }
}

TEST(ParallelScanning, FindsWhatOneThreadFinds)
{
    Dice dice(Seed);
    for (int i = 0; i < 300 && !::testing::Test::HasFailure(); ++i) {
        const QByteArray text = randomOBJText(dice);
        expectSame(text, readAsBytes(text), dice);
    }
}

TEST(ParallelScanning, FindsInStreamsWhatFilesHold)
{
    Dice dice(Seed);
    for (int i = 0; i < 100 && !::testing::Test::HasFailure(); ++i) {
        const QByteArray text = randomOBJText(dice);
        const ReadOBJ expected = readAsBytes(text);
        if (expected.outcome == OBJScanOutcome::NeedsLineReader)
            continue; // a stream never does
        WorkThreads crew(3);
        Pipe pipe(text);
        EXPECT_THAT(differences(expected, readAsBytes(pipe, {}, smallPieces(100), &crew.work())),
                    IsEmpty())
            << printable(text);
    }
}

TEST(ParallelScanning, FindsGeneratedModelsWithTheirLibraries)
{
    for (quint32 seed = 0; seed < 60 && !::testing::Test::HasFailure(); ++seed) {
        const OrvReference::ModelFiles model = OrvReference::generateModel(seed);
        const OrvReference::WrittenModel written(model);
        const QString baseDir = QFileInfo(written.objPath()).absolutePath();
        QFile alone(written.objPath());
        const ReadOBJ expected = readAsBytes(alone, baseDir);
        for (const int threads : ThreadCounts) {
            WorkThreads crew(threads);
            crew.disturb(seed);
            QFile file(written.objPath());
            EXPECT_THAT(
                differences(expected, readAsBytes(file, baseDir, smallPieces(200), &crew.work())),
                IsEmpty())
                << "seed " << seed << ", " << threads << " threads:\n"
                << OrvReference::printable(model);
        }
    }
}

/// Every kind of line that means something for pieces after it.
TEST(ParallelScanning, KnowsWhatComesBeforeAPiece)
{
    struct Row
    {
        const char *name;
        QByteArray text;
    };
    const QByteArray positions = "v 1 2 3\nv 4 5 6\nv 7 8 9\n";
    const QByteArray faces = "f 1 2 3\nf 1/1/1 2/1/1 3/1/1 \n";
    const Row rows[] = {
        {"indices that count back", (positions + "f -1 -2 -3\nf 1 -1 -0\n").repeated(50)},
        {"odd lines that count back", (positions + "f +1 -1 -2\n f\t-1 0 -3\n").repeated(50)},
        {"a face dropped that counts back", (positions + "f -1 -2 x\nf -1 -2 -3\n").repeated(50)},
        {"indices that count back too far", (positions + "f -1000 -2147483648 -3\n").repeated(50)},
        {"attributes that begin late", positions + faces.repeated(40) + "vt 1 1\n" +
                                           faces.repeated(40) + "vn 1 1 1\n" + faces.repeated(40)},
        {"no positions before the last faces", faces.repeated(40) + positions + faces.repeated(3)},
        {"faces of many corners",
         positions + ("f" + QByteArray(" 1").repeated(300) + "\nf 1 2 3\n").repeated(9)},
        {"materials",
         (positions + "usemtl none\nf 1 2 3\nusemtl <default>\nf 3 2 1\n").repeated(40)},
        {"a byte-order mark", "\xef\xbb\xbf" + positions.repeated(30)},
        {"no line feed at the end", positions.repeated(30) + "f 1 2 3"},
        {"a line longer than pieces", "# " + QByteArray(5000, '#') + '\n' + positions.repeated(20)},
        {"empty lines", positions + QByteArray(3000, '\n') + positions},
        {"carriage returns", (positions + faces).repeated(30).replace("\n", "\r\n")},
    };
    Dice dice(Seed);
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const ReadOBJ expected = readByLines(row.text);
        expectSame(row.text, expected, dice);
    }
}

/// What comes first in the file decides, whatever is found first.
TEST(ParallelScanning, EndsWithTheFirstFailureOfTheFile)
{
    const QByteArray lines = "v 1 2 3\n";
    const QByteArray missing = "mtllib missing.mtl\n";
    const QByteArray tooLong = "# " + QByteArray(60000, '#') + "\n";
    struct Row
    {
        const char *name;
        QByteArray text;
        OBJScanOutcome outcome;
        QString detail;
    };
    const TemporaryModel files;
    const QString missingPath = files.path(QStringLiteral("missing.mtl"));
    const QString tooMany = QStringLiteral("more than 900 numbers in \"v\" lines");
    const QString tooLongDetail = QStringLiteral("a line of more than 50000 bytes");
    const QByteArray many = lines.repeated(301);
    const Row rows[] = {
        {"a missing library", lines.repeated(20) + missing + lines, OBJScanOutcome::LibraryMissing,
         missingPath},
        {"a missing library before a limit", lines + missing + many, OBJScanOutcome::LibraryMissing,
         missingPath},
        {"a limit before a missing library", many + missing, OBJScanOutcome::LimitExceeded,
         tooMany},
        {"a long line before a limit", lines + tooLong + many, OBJScanOutcome::LimitExceeded,
         tooLongDetail},
        {"a limit before a long line", many + tooLong, OBJScanOutcome::LimitExceeded, tooMany},
        {"a missing library before a long line", missing + tooLong, OBJScanOutcome::LibraryMissing,
         missingPath},
        {"a long line before a missing library", tooLong + missing, OBJScanOutcome::LimitExceeded,
         tooLongDetail},
    };
    for (const Row &row : rows) {
        for (const int threads : {1, 2, 3, 7, 16}) {
            SCOPED_TRACE(std::string(row.name) + ", " + std::to_string(threads) + " threads");
            OBJScanLimits limits = smallPieces(100);
            limits.chunkBytes = 100;
            limits.streamElements = 900;
            limits.lineBytes = 50000;
            WorkThreads crew(threads);
            crew.disturb(Seed);
            QFile file(files.write(QStringLiteral("model.obj"), row.text));
            const ReadOBJ read = readAsBytes(file, files.directory(), limits, &crew.work());
            EXPECT_EQ(read.outcome, row.outcome);
            EXPECT_EQ(read.libraryPath, row.detail);
        }
    }
}

QByteArray largeText()
{
    return QByteArray("v 1 2 3\nf 1 1 1\nusemtl none\n").repeated(400);
}

TEST(ParallelScanning, StopsAtAnyCallOfTheCallback)
{
    for (const int threads : {1, 2, 7}) {
        int calls = 0;
        for (int last = 1; last < 20; ++last) {
            calls = 0;
            WorkThreads crew(threads, [&](WorkStage stage, double fraction) {
                EXPECT_EQ(stage, WorkStage::Reading);
                EXPECT_GE(fraction, 0.0);
                EXPECT_LE(fraction, 1.0);
                return ++calls < last;
            });
            OBJScanLimits limits = smallPieces(100);
            limits.chunkBytes = 100;
            QBuffer buffer;
            buffer.setData(largeText());
            try {
                readAsBytes(buffer, {}, limits, &crew.work());
                EXPECT_LT(calls, last) << "nobody listened";
            } catch (const WorkStopped &) {
                EXPECT_EQ(calls, last);
            }
        }
    }
}

TEST(ParallelScanning, PassesOnWhatTheCallbackThrows)
{
    WorkThreads crew(3, [](WorkStage, double) -> bool { throw std::runtime_error("enough"); });
    QBuffer buffer;
    buffer.setData(largeText());
    EXPECT_THROW(readAsBytes(buffer, {}, smallPieces(100), &crew.work()), std::runtime_error);
}

} // namespace
} // namespace OrvTest
