// Files that change while they are read.
#include "support/LeasedFile.h"
#include "support/ModelDifferences.h"
#include "support/TroublesomeFiles.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <atomic>
#include <cstdio>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

namespace {

class FilesInMotion : public TroublesomeFiles
{};

/// What loads do while a file changes in their middle: at a library's line they wait, and
/// the rest of the model, far more than is read ahead, has not been looked at.
class FilesChangedInTheMiddle : public FilesInMotion
{
protected:
    static constexpr int FacesBehind = 200000;

    void SetUp() override
    {
        FilesInMotion::SetUp();
        library = files.write(QStringLiteral("slow.mtl"), "newmtl a\n");
        fileName = model(Triangle + "mtllib slow.mtl\nusemtl a\n" +
                         QByteArray("f 3 2 1\n").repeated(FacesBehind));
    }

    /// \param change done while the loader waits; \return what is loaded.
    UploadedModel loadWhile(LoaderPath path, const std::function<void()> &change)
    {
        const LeasedFile lease(library, change);
        UploadedModel outcome = loadByPath(fileName, path);
        EXPECT_TRUE(lease.wasOpened() || !lease.isHeld());
        hasLeases = lease.isHeld();
        return outcome;
    }

    /// Replaces the library at once: there is no moment without one.
    void moveInPlace(const QString &replacement) const
    {
        EXPECT_EQ(
            std::rename(replacement.toLocal8Bit().constData(), library.toLocal8Bit().constData()),
            0);
    }

    bool hasLeases = true;
    QString library;
    QString fileName;
};

TEST_F(FilesChangedInTheMiddle, ATruncatedOneEndsWhereItWasCut)
{
    for (const LoaderPath path : BothPaths) {
        SetUp();
        constexpr int FacesLeft = FacesBehind / 2;
        const UploadedModel outcome = loadWhile(path, [&] {
            QFile file(fileName);
            EXPECT_TRUE(file.resize(file.size() - 8 * (FacesBehind - FacesLeft)));
        });
        if (!hasLeases)
            GTEST_SKIP() << "no leases on the files of this system";
        EXPECT_EQ(outcome.error, UploadedModel::untouchedError());
        EXPECT_EQ(outcome.bundle().triangleCount(), 1 + FacesLeft);
    }
}

TEST_F(FilesChangedInTheMiddle, AnAppendedOneIsReadToItsNewEnd)
{
    for (const LoaderPath path : BothPaths) {
        SetUp();
        const UploadedModel outcome = loadWhile(path, [&] {
            QFile file(fileName);
            EXPECT_TRUE(file.open(QIODevice::Append));
            file.write("f 1 3 2\nf 2 1 3\n");
        });
        if (!hasLeases)
            GTEST_SKIP() << "no leases on the files of this system";
        EXPECT_EQ(outcome.bundle().triangleCount(), 1 + FacesBehind + 2);
    }
}

TEST_F(FilesChangedInTheMiddle, AReplacedOneIsReadAsItWas)
{
    const auto replaceByDirectory = [&] { QDir().mkpath(fileName); };
    const auto replaceByPipe = [&] {
        EXPECT_EQ(mkfifo(fileName.toLocal8Bit().constData(), 0600), 0);
    };
    const auto replaceByNothing = [] {};
    const std::function<void()> replacements[] = {replaceByDirectory, replaceByPipe,
                                                  replaceByNothing};
    for (const auto &replace : replacements) {
        for (const LoaderPath path : BothPaths) {
            SetUp();
            const UploadedModel outcome = loadWhile(path, [&] {
                EXPECT_TRUE(QFile::remove(fileName));
                replace();
            });
            if (!hasLeases)
                GTEST_SKIP() << "no leases on the files of this system";
            EXPECT_EQ(outcome.bundle().triangleCount(), 1 + FacesBehind);
            QDir().rmdir(fileName);
            QFile::remove(fileName);
        }
    }
}

TEST_F(FilesChangedInTheMiddle, ALibraryThatIsReplacedWhileItIsWaitedForIsReadAsItIsThen)
{
    for (const LoaderPath path : BothPaths) {
        SetUp();
        const UploadedModel before = loadByPath(fileName, path);
        const UploadedModel outcome = loadWhile(path, [&] {
            moveInPlace(files.write(QStringLiteral("new.mtl"), "newmtl a\nKd 1 0 0\n"));
        });
        if (!hasLeases)
            GTEST_SKIP() << "no leases on the files of this system";
        EXPECT_EQ(outcome.error, UploadedModel::untouchedError());
        EXPECT_THAT(differences(before, outcome),
                    ElementsAre("materials, record 1: number of members: expected 1, got 2"));
        EXPECT_THAT(differences(loadByPath(fileName, path), outcome), IsEmpty());
    }
}

/// What takes the place of a library that was a file when it was looked at.
struct NoLibrary
{
    const char *name;
    std::function<void()> putInPlace;
    std::vector<std::string> expectedWarnings;
};

TEST_F(FilesChangedInTheMiddle, ALibraryThatIsNoFileAnyMoreIsNotWaitedFor)
{
    SetUp();
    const NoLibrary replacements[] = {
        {"nothing", [&] { EXPECT_TRUE(QFile::remove(library)); }, {}},
        {"directory",
         [&] {
             EXPECT_TRUE(QFile::remove(library));
             EXPECT_TRUE(QDir().mkpath(library));
         },
         {}},
        {"pipe that nobody writes to",
         [&] {
             const QString pipe = files.path(QStringLiteral("pipe"));
             EXPECT_EQ(mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
             moveInPlace(pipe);
         },
         {warningOfKind(library)}},
    };
    for (const NoLibrary &replacement : replacements) {
        for (const LoaderPath path : BothPaths) {
            SCOPED_TRACE(replacement.name);
            SetUp();
            const UploadedModel outcome = loadWhile(path, replacement.putInPlace);
            if (!hasLeases)
                GTEST_SKIP() << "no leases on the files of this system";
            EXPECT_TRUE(outcome.isNull);
            EXPECT_EQ(outcome.error, mtlFailure(library));
            EXPECT_THAT(outcome.warnings(), ElementsAreArray(replacement.expectedWarnings));
            QDir().rmdir(library);
            QFile::remove(library);
        }
    }
}

/// Wherever a load meets the changes, it comes to an end with what it has read.
TEST_F(FilesInMotion, AFileThatShrinksAndGrowsAllTheTime)
{
    const QString fileName = model(Triangle + QByteArray("f 3 2 1\n").repeated(60000));
    const qint64 size = QFile(fileName).size();
    std::atomic<bool> done{false};
    std::thread changing([&] {
        for (int i = 0; !done; ++i)
            QFile::resize(fileName, size * (i * 7919 % 13) / 13);
    });
    for (int i = 0; i < 40; ++i) {
        for (const LoaderPath path : BothPaths) {
            const UploadedModel outcome = loadByPath(fileName, path);
            EXPECT_FALSE(outcome.isNull);
            EXPECT_LE(outcome.bundle().triangleCount(), 60001);
            EXPECT_LE(outcome.bundle().vertexCount, 4u) << "three, and zeros for what is lost";
        }
    }
    done = true;
    changing.join();
}

} // namespace
