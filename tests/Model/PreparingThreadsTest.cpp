// Preparing on several threads, with a callback, and stopped on the way.
#include "reference/ModelFiles.h"
#include "reference/ModelGenerator.h"
#include "support/MessageCapture.h"
#include "support/ModelDifferences.h"
#include "support/PreparedContents.h"
#include "support/QtPrinting.h"
#include "support/RandomRings.h"
#include "support/TemporaryModel.h"
#include "support/WorkThreads.h"

#include "OBJPreparing.h"
#include <OrvModel/ModelPreparing.h>

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <iterator>
#include <memory>
#include <stdexcept>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::IsEmpty;

namespace {

constexpr int ThreadCounts[] = {2, 3, 7, 16};

/// Pieces of a few lines, for any file.
OBJScanLimits smallPieces()
{
    OBJScanLimits limits;
    limits.chunkBytes = 300;
    limits.pieceBytes = 200;
    limits.threadsFromBytes = 0;
    return limits;
}

/// A wavy sheet of quads and triangles in two materials: enough for each stage to have several
/// tasks, where they are small.
QByteArray sheet(int side)
{
    QByteArray text = "mtllib m.mtl\n";
    for (int y = 0; y <= side; ++y) {
        for (int x = 0; x <= side; ++x)
            text += "v " + QByteArray::number(x) + ' ' + QByteArray::number(y) + ' ' +
                    QByteArray::number((x * 7 + y * 5) % 11) + "\n";
    }
    const auto corner = [side](int x, int y) {
        return ' ' + QByteArray::number(y * (side + 1) + x + 1);
    };
    for (int y = 0; y < side; ++y) {
        text += y % 2 == 0 ? "usemtl even\n" : "usemtl odd\n";
        for (int x = 0; x < side; ++x) {
            text += "f" + corner(x, y) + corner(x + 1, y) + corner(x + 1, y + 1);
            text += x % 3 == 0 ? "\nf" + corner(x, y) + corner(x + 1, y + 1) + corner(x, y + 1)
                               : corner(x, y + 1);
            text += "\n";
        }
    }
    return text;
}

/// Prepares a file as the exported function does, in small pieces, with a callback at every turn.
UploadedModel preparedInPieces(const QString &path, QThreadPool *pool,
                               const std::function<void()> &disturbance = {})
{
    const MessageCapture silence;
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    PrepareOptions options;
    options.threadPool = pool;
    options.progress = [](const PrepareProgress &) { return true; };
    OBJPreparation preparation(file, path, LoaderPath::Fast, smallPieces(), options);
    preparation.work().setInterval(0);
    preparation.work().setDisturbance(disturbance);
    QString error;
    if (!preparation.read(error)) {
        UploadedModel failed;
        failed.isNull = true;
        failed.error = error;
        return failed;
    }
    return contentsOf(PreparedModel(preparation.prepare()));
}

/// What one thread makes of a file.
UploadedModel preparedAlone(const QString &path)
{
    const MessageCapture silence;
    QString error;
    const std::unique_ptr<PreparedModel> model = prepareModelFromOBJFile(path, error);
    if (model)
        return contentsOf(*model);
    UploadedModel failed;
    failed.isNull = true;
    failed.error = error;
    return failed;
}

/// With `threads` threads, each of which is late now and then.
void expectSameOn(int threads, const QString &path, std::uint32_t seed)
{
    QThreadPool pool;
    pool.setMaxThreadCount(threads - 1);
    Dice dice(seed);
    std::mutex mutex;
    const auto disturbance = [&] {
        int delay = 0;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            delay = dice.oneIn(8) ? dice.below(300) : 0;
        }
        if (delay > 0)
            QThread::usleep(static_cast<unsigned long>(delay));
    };
    EXPECT_THAT(differences(preparedAlone(path), preparedInPieces(path, &pool, disturbance)),
                IsEmpty())
        << path.toStdString() << ", " << threads << " threads";
    // Nothing runs any more; the pool needs a moment to know.
    EXPECT_TRUE(pool.waitForDone(10000));
}

void expectSameOnThreads(const QString &path, std::uint32_t seed)
{
    for (const int threads : ThreadCounts)
        expectSameOn(threads, path, seed);
}

class PreparingThreads : public ::testing::Test
{
protected:
    QString writeSheet(int side)
    {
        _directory.write(QStringLiteral("m.mtl"), "newmtl even\nnewmtl odd\nKd 1 0 0\n");
        return _directory.write(QStringLiteral("sheet.obj"), sheet(side));
    }

    TemporaryModel _directory;
};

TEST_F(PreparingThreads, GiveTheSameBitsForSamples)
{
    const QDir samples(QStringLiteral(ORV_SAMPLES_DIR));
    for (const char *name : {"lighthouse.obj", "negative_indices.obj", "concave_polygons.obj"})
        expectSameOnThreads(samples.filePath(QLatin1String(name)), 11);
}

TEST_F(PreparingThreads, GiveTheSameBitsForRandomModels)
{
    for (std::uint32_t seed = 1; seed <= ORV_RANDOM_MODELS; ++seed) {
        const OrvReference::WrittenModel model(OrvReference::generateModel(seed));
        expectSameOn(ThreadCounts[seed % std::size(ThreadCounts)], model.objPath(), seed);
        if (HasFailure())
            return;
    }
}

/// What fuzzing has kept of OBJ files: each took a way through the reader that no other takes.
TEST_F(PreparingThreads, GiveTheSameBitsForWhatFuzzingKept)
{
    QDirIterator files(QStringLiteral(ORV_FUZZ_CORPUS), QDir::Files);
    std::uint32_t number = 0;
    for (; files.hasNext(); ++number)
        expectSameOn(ThreadCounts[number % std::size(ThreadCounts)], files.next(), number);
    EXPECT_GT(number, 0u);
}

TEST_F(PreparingThreads, NeedNotComeAtAll)
{
    const QString path = writeSheet(30);
    const UploadedModel expected = preparedAlone(path);
    QThreadPool busy;
    busy.setMaxThreadCount(1);
    QSemaphore isBusy;
    QSemaphore mayEnd;
    class Occupation : public QRunnable
    {
    public:
        Occupation(QSemaphore &begun, QSemaphore &end) : _begun(begun), _end(end) {}
        void run() override
        {
            _begun.release();
            _end.acquire();
        }

    private:
        QSemaphore &_begun;
        QSemaphore &_end;
    };
    busy.start(new Occupation(isBusy, mayEnd));
    isBusy.acquire();
    EXPECT_THAT(differences(expected, preparedInPieces(path, &busy)), IsEmpty());
    mayEnd.release();
}

// ---- Progress ---------------------------------------------------------------------

/// Prepares with `progress` at every turn. Throws what passes through.
std::unique_ptr<PreparedModelData> prepareTelling(const QString &path, QThreadPool *pool,
                                                  std::function<bool(const PrepareProgress &)> tell)
{
    const MessageCapture silence;
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    PrepareOptions options;
    options.threadPool = pool;
    options.progress = std::move(tell);
    OBJPreparation preparation(file, path, LoaderPath::Fast, smallPieces(), options);
    preparation.work().setInterval(0);
    QString error;
    EXPECT_TRUE(preparation.read(error));
    return preparation.prepare();
}

TEST_F(PreparingThreads, ProgressNeverFallsAndEndsAtOne)
{
    const QString path = writeSheet(40);
    QThreadPool pool;
    pool.setMaxThreadCount(3);
    for (QThreadPool *threads : {static_cast<QThreadPool *>(nullptr), &pool}) {
        double last = 0.0;
        int calls = 0;
        const QThread *caller = QThread::currentThread();
        prepareTelling(path, threads, [&](const PrepareProgress &progress) {
            EXPECT_GE(progress.fraction, last);
            EXPECT_LE(progress.fraction, 1.0);
            EXPECT_EQ(QThread::currentThread(), caller);
            last = progress.fraction;
            ++calls;
            return true;
        });
        EXPECT_EQ(last, 1.0);
        EXPECT_GT(calls, threads ? 0 : 10); // others do most of the work
    }
}

enum class Stop
{
    False,
    Exception
};

/// Stops a run when it calls back for the time `stopAt`, counted from 0.
/// \return whether the run was through before.
bool isThroughBefore(int stopAt, Stop stop, const QString &path, QThreadPool *pool)
{
    int calls = 0;
    const auto tell = [&](const PrepareProgress &) {
        if (calls++ < stopAt)
            return true;
        if (stop == Stop::Exception)
            throw std::runtime_error("enough");
        return false;
    };
    try {
        prepareTelling(path, pool, tell);
        return true;
    } catch (const WorkStopped &) {
        EXPECT_EQ(stop, Stop::False);
    } catch (const std::runtime_error &error) {
        EXPECT_EQ(stop, Stop::Exception);
        EXPECT_STREQ(error.what(), "enough");
    }
    return false;
}

/// Under the address sanitizer, what a stopped run leaves behind is a leak.
TEST_F(PreparingThreads, StopAtEveryCallbackAndLeaveNothingBehind)
{
    const QString path = writeSheet(12);
    const UploadedModel expected = preparedAlone(path);
    QThreadPool pool;
    pool.setMaxThreadCount(3);
    for (QThreadPool *threads : {static_cast<QThreadPool *>(nullptr), &pool}) {
        for (const Stop stop : {Stop::False, Stop::Exception}) {
            int stopAt = 0;
            while (!isThroughBefore(stopAt, stop, path, threads))
                ++stopAt;
            // Where others do most of the work, the callback hears of less.
            EXPECT_GT(stopAt, threads ? 0 : 10);
            EXPECT_THAT(differences(expected, preparedAlone(path)), IsEmpty());
        }
    }
}

TEST_F(PreparingThreads, SayThatTheyWereCancelled)
{
    const QString path = writeSheet(3);
    QString error;
    QString reason;
    PrepareOptions options;
    options.progress = [](const PrepareProgress &) { return false; };
    options.reason = &reason;
    const MessageCapture silence;
    EXPECT_FALSE(prepareModelFromOBJFile(path, error, options));
    EXPECT_EQ(error, QStringLiteral("Loading of '%1' was cancelled").arg(path));
    EXPECT_EQ(reason, QStringLiteral("cancelled"));
}

TEST_F(PreparingThreads, TakeAWholeFileThroughTheExportedFunction)
{
    // Above the size from which threads are asked for.
    const QString path = writeSheet(400);
    ASSERT_GT(QFile(path).size(), OBJScanLimits().threadsFromBytes);
    QThreadPool pool;
    pool.setMaxThreadCount(2);
    double last = 0.0;
    PrepareOptions options;
    options.threadPool = &pool;
    options.progress = [&](const PrepareProgress &progress) {
        last = progress.fraction;
        return true;
    };
    QString error;
    const MessageCapture silence;
    const std::unique_ptr<PreparedModel> model = prepareModelFromOBJFile(path, error, options);
    ASSERT_TRUE(model);
    EXPECT_EQ(last, 1.0);
    EXPECT_THAT(differences(preparedAlone(path), contentsOf(*model)), IsEmpty());
}

} // namespace
