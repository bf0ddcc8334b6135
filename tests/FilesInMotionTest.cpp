// Files that change while they are read, are no files, or name themselves and others a
// million times. ORV_LONG_TESTS=1 adds those of gigabytes.
#include "support/BothRoads.h"
#include "support/GLTest.h"
#include "support/LeasedFile.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

namespace {

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

constexpr OBJRoad BothRoads[] = {OBJRoad::Bytes, OBJRoad::Lines};

std::string warningOfKind(const QString &fileName)
{
    return "'" + fileName.toStdString() +
           "' is not read: it is a pipe, a socket or a device; copy what it gives into a regular "
           "file";
}

QString untouched()
{
    return QStringLiteral("untouched");
}

QString objFailure(const QString &fileName)
{
    return QStringLiteral("Failed to load OBJ file '%1'").arg(fileName);
}

QString mtlFailure(const QString &fileName)
{
    return QStringLiteral("Failed to load MTL file '%1'").arg(fileName);
}

int triangles(const RoadOutcome &outcome)
{
    int count = 0;
    for (const DrawElementsIndirectCommand &command : outcome.commands)
        count += static_cast<int>(command.count) / 3;
    return count;
}

bool longTests()
{
    return qEnvironmentVariableIntValue("ORV_LONG_TESTS") != 0;
}

class FilesInMotion : public GLTest
{
protected:
    QString model(const QByteArray &text) const
    {
        return files.write(QStringLiteral("model.obj"), text);
    }

    /// A file of many megabytes, written in parts.
    QString largeModel(const QByteArray &part, int parts) const
    {
        const QString fileName = files.path(QStringLiteral("large.obj"));
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        for (int i = 0; i < parts; ++i)
            EXPECT_EQ(file.write(part), part.size());
        return fileName;
    }

    TemporaryModel files;
};

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
    RoadOutcome loadWhile(OBJRoad road, const std::function<void()> &change)
    {
        const LeasedFile lease(library, change);
        RoadOutcome outcome = loadByRoad(fileName, road);
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
    for (const OBJRoad road : BothRoads) {
        SetUp();
        constexpr int FacesLeft = FacesBehind / 2;
        const RoadOutcome outcome = loadWhile(road, [&] {
            QFile file(fileName);
            EXPECT_TRUE(file.resize(file.size() - 8 * (FacesBehind - FacesLeft)));
        });
        if (!hasLeases)
            GTEST_SKIP() << "no leases on the files of this system";
        EXPECT_EQ(outcome.errorMessage, untouched());
        EXPECT_EQ(triangles(outcome), 1 + FacesLeft);
    }
}

TEST_F(FilesChangedInTheMiddle, AnAppendedOneIsReadToItsNewEnd)
{
    for (const OBJRoad road : BothRoads) {
        SetUp();
        const RoadOutcome outcome = loadWhile(road, [&] {
            QFile file(fileName);
            EXPECT_TRUE(file.open(QIODevice::Append));
            file.write("f 1 3 2\nf 2 1 3\n");
        });
        if (!hasLeases)
            GTEST_SKIP() << "no leases on the files of this system";
        EXPECT_EQ(triangles(outcome), 1 + FacesBehind + 2);
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
        for (const OBJRoad road : BothRoads) {
            SetUp();
            const RoadOutcome outcome = loadWhile(road, [&] {
                EXPECT_TRUE(QFile::remove(fileName));
                replace();
            });
            if (!hasLeases)
                GTEST_SKIP() << "no leases on the files of this system";
            EXPECT_EQ(triangles(outcome), 1 + FacesBehind);
            QDir().rmdir(fileName);
            QFile::remove(fileName);
        }
    }
}

TEST_F(FilesChangedInTheMiddle, ALibraryThatIsReplacedWhileItIsWaitedForIsReadAsItIsThen)
{
    for (const OBJRoad road : BothRoads) {
        SetUp();
        const RoadOutcome before = loadByRoad(fileName, road);
        const RoadOutcome outcome = loadWhile(road, [&] {
            moveInPlace(files.write(QStringLiteral("new.mtl"), "newmtl a\nKd 1 0 0\n"));
        });
        if (!hasLeases)
            GTEST_SKIP() << "no leases on the files of this system";
        EXPECT_EQ(outcome.errorMessage, untouched());
        EXPECT_NE(outcome.records, before.records);
        EXPECT_EQ(outcome.records, loadByRoad(fileName, road).records);
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
        for (const OBJRoad road : BothRoads) {
            SCOPED_TRACE(replacement.name);
            SetUp();
            const RoadOutcome outcome = loadWhile(road, replacement.putInPlace);
            if (!hasLeases)
                GTEST_SKIP() << "no leases on the files of this system";
            EXPECT_FALSE(outcome.isModel);
            EXPECT_EQ(outcome.errorMessage, mtlFailure(library));
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
        for (const OBJRoad road : BothRoads) {
            const RoadOutcome outcome = loadByRoad(fileName, road);
            EXPECT_TRUE(outcome.isModel);
            EXPECT_LE(triangles(outcome), 60001);
            EXPECT_LE(outcome.vertexCount, 4u) << "three, and zeros for what is lost";
        }
    }
    done = true;
    changing.join();
}

struct SpecialFile
{
    const char *name;
    QString path;
    bool isWarnedOf; ///< what is missing or a directory is said by the error alone
};

class SpecialFiles : public FilesInMotion
{
protected:
    void SetUp() override
    {
        FilesInMotion::SetUp();
        const QString pipe = files.path(QStringLiteral("pipe"));
        ASSERT_EQ(mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
        _writer = open(pipe.toLocal8Bit().constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        ASSERT_EQ(write(_writer, Triangle.constData(), size_t(Triangle.size())), Triangle.size());
        const QString silent = files.path(QStringLiteral("silent"));
        ASSERT_EQ(mkfifo(silent.toLocal8Bit().constData(), 0600), 0);
        const QString link = link_(QStringLiteral("link"), pipe);
        const QString loop = link_(QStringLiteral("loop"), files.path(QStringLiteral("loop")));
        const QString dangling = link_(QStringLiteral("dangling"), QStringLiteral("/none/x"));
        const QString directory = files.path(QStringLiteral("directory"));
        QDir().mkpath(directory);
        special = {
            {"pipe that somebody writes to", pipe, true},
            {"pipe that nobody writes to", silent, true},
            {"link to a pipe", link, true},
            {"socket", boundSocket(), true},
            {"endless device", QStringLiteral("/dev/zero"), true},
            {"device of the terminal", QStringLiteral("/dev/tty"), true},
            {"directory", directory, false},
            {"link to itself", loop, false},
            {"link to nowhere", dangling, false},
            {"below a file", files.write(QStringLiteral("file"), "") + QLatin1String("/x"), false},
            {"name too long", files.path(QString(300, QLatin1Char('n'))), false},
        };
    }

    void TearDown() override
    {
        close(_writer);
        close(_socket);
        FilesInMotion::TearDown();
    }

    static std::vector<std::string> expectedWarnings(const SpecialFile &file)
    {
        if (!file.isWarnedOf)
            return {};
        return {warningOfKind(file.path)};
    }

    std::vector<SpecialFile> special;

private:
    QString link_(const QString &name, const QString &target) const
    {
        EXPECT_TRUE(QFile::link(target, files.path(name)));
        return files.path(name);
    }

    QString boundSocket()
    {
        const QString path = files.path(QStringLiteral("socket"));
        _socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, path.toLocal8Bit().constData(), sizeof address.sun_path);
        EXPECT_EQ(bind(_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        return path;
    }

    int _writer = -1;
    int _socket = -1;
};

TEST_F(SpecialFiles, AreNoModels)
{
    for (const SpecialFile &file : special) {
        SCOPED_TRACE(file.name);
        const RoadOutcome outcome = expectSameOnBothRoads(file.path);
        EXPECT_FALSE(outcome.isModel);
        EXPECT_EQ(outcome.errorMessage, objFailure(file.path));
        EXPECT_THAT(outcome.warnings(), ElementsAreArray(expectedWarnings(file)));
    }
}

TEST_F(SpecialFiles, AreNoLibraries)
{
    for (const SpecialFile &file : special) {
        SCOPED_TRACE(file.name);
        const RoadOutcome outcome =
            expectSameOnBothRoads(model("mtllib " + file.path.toUtf8() + '\n' + Triangle));
        EXPECT_FALSE(outcome.isModel);
        EXPECT_EQ(outcome.errorMessage, mtlFailure(file.path));
        EXPECT_THAT(outcome.warnings(), ElementsAreArray(expectedWarnings(file)));
    }
}

TEST_F(FilesInMotion, TheNullDeviceIsAnEmptyFile)
{
    const RoadOutcome empty = expectSameOnBothRoads(QStringLiteral("/dev/null"));
    EXPECT_TRUE(empty.isModel);
    EXPECT_EQ(empty.bundleCount, 0);
    EXPECT_THAT(empty.messages, IsEmpty());
    const RoadOutcome drawn = expectSameOnBothRoads(model("mtllib /dev/null\n" + Triangle));
    EXPECT_EQ(triangles(drawn), 1);
    EXPECT_THAT(drawn.warnings(), IsEmpty());
}

/// Files of the system that claim to be regular and empty, whatever they hold.
TEST_F(FilesInMotion, FilesThatSayTheyAreEmptyAreEmpty)
{
    const QString status = QStringLiteral("/proc/self/status");
    if (!QFile::exists(status))
        GTEST_SKIP() << "no " << status.toStdString();
    const RoadOutcome outcome = expectSameOnBothRoads(status);
    EXPECT_TRUE(outcome.isModel);
    EXPECT_EQ(outcome.bundleCount, 0);
}

/// Somebody else, while it lives. Being root, one may read everything.
class NobodyInParticular
{
public:
    NobodyInParticular()
    {
        if (geteuid() == 0) {
            EXPECT_EQ(seteuid(65534), 0);
        }
    }
    ~NobodyInParticular()
    {
        if (getuid() == 0) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
};

TEST_F(FilesInMotion, FilesThatMayNotBeReadCannotBeOpened)
{
    const QString library = files.write(QStringLiteral("secret.mtl"), "newmtl a\n");
    const QString secret = files.write(QStringLiteral("secret.obj"), Triangle);
    const QString naming = model("mtllib secret.mtl\n" + Triangle);
    for (const QString &path : {library, secret})
        ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::Permissions()));
    ASSERT_EQ(chmod(files.directory().toLocal8Bit().constData(), 0755), 0);
    ASSERT_EQ(chmod(naming.toLocal8Bit().constData(), 0644), 0);

    const NobodyInParticular nobody;
    EXPECT_EQ(expectSameOnBothRoads(secret).errorMessage, objFailure(secret));
    EXPECT_EQ(expectSameOnBothRoads(naming).errorMessage, mtlFailure(library));
}

/// However a load ends, the files it has opened are closed.
TEST_F(SpecialFiles, LeaveNothingOpen)
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    if (!descriptors.exists())
        GTEST_SKIP() << "no " << descriptors.path().toStdString();
    const auto loadAll = [this] {
        for (const SpecialFile &file : special) {
            loadByRoad(file.path, OBJRoad::Bytes);
            loadByRoad(model("mtllib " + file.path.toUtf8() + '\n'), OBJRoad::Lines);
        }
        files.write(QStringLiteral("m.mtl"), "newmtl a\n");
        loadByRoad(model("mtllib m.mtl\n" + Triangle), OBJRoad::Bytes);
    };
    const auto openFiles = [&] { return QDir(descriptors.path()).entryList(QDir::AllEntries); };
    loadAll();
    const QStringList before = openFiles();
    loadAll();
    EXPECT_EQ(openFiles().size(), before.size());
}

/// Reading the library for each line would take twenty thousand times 300 kB.
TEST_F(FilesInMotion, ALibraryNamedManyTimesIsReadOnce)
{
    QByteArray library = "newmtl a\nKd 1 0 0\nnewmtl a\nKd 0 1 0\n";
    library += QByteArray("# nothing\n").repeated(30000);
    files.write(QStringLiteral("m.mtl"), library);
    QByteArray spellings;
    for (int i = 0; i < 20000; ++i)
        spellings += "mtllib " + QByteArray("./").repeated(i % 20) + "m.mtl\n";
    const std::clock_t begin = std::clock();
    const RoadOutcome outcome = expectSameOnBothRoads(model(spellings + "usemtl a\n" + Triangle));
    EXPECT_LT(std::clock() - begin, 20 * CLOCKS_PER_SEC);
    EXPECT_THAT(outcome.materialNames, ElementsAre(QStringLiteral("a")));
    EXPECT_EQ(triangles(outcome), 1);
}

TEST_F(FilesInMotion, AModelMayBeItsOwnLibrary)
{
    const RoadOutcome outcome = expectSameOnBothRoads(
        model("newmtl a\nKd 1 0 0\nmtllib model.obj\nmtllib ./model.obj\nusemtl a\n" + Triangle));
    EXPECT_THAT(outcome.materialNames, ElementsAre(QStringLiteral("a")));
    EXPECT_THAT(outcome.warnings(), IsEmpty());
}

TEST_F(FilesInMotion, ManyMaterialGroups)
{
    const int count = longTests() ? 1000000 : 5000;
    QByteArray library;
    QByteArray faces;
    for (int i = 0; i < count; ++i) {
        const QByteArray name = QByteArray::number(i);
        library += "newmtl " + name + "\nKd 1 0 0\n";
        faces += "usemtl " + name + "\nf 1 2 3\n";
    }
    files.write(QStringLiteral("m.mtl"), library);
    const RoadOutcome outcome = expectSameOnBothRoads(model("mtllib m.mtl\n" + Triangle + faces));
    EXPECT_EQ(outcome.commands.size(), count + 1);
    EXPECT_EQ(outcome.vertexCount, 3u);
}

TEST_F(FilesInMotion, BlanksAndNothingElse)
{
    const RoadOutcome outcome = expectSameOnBothRoads(largeModel(QByteArray(1 << 20, ' '), 16));
    EXPECT_TRUE(outcome.isModel);
    EXPECT_EQ(outcome.bundleCount, 0);
}

TEST_F(FilesInMotion, ALineThatIsTooLongIsRefused)
{
    OBJScanLimits limits;
    limits.chunkBytes = 1 << 16;
    limits.lineBytes = 1 << 20;
    for (const char filling : {' ', 'x', '\0', '1'}) {
        const QString fileName = model(
            Triangle + QByteArray(int(limits.lineBytes + 2 * limits.chunkBytes), filling) + '\n');
        const RoadOutcome outcome = loadByRoad(fileName, OBJRoad::Bytes, limits);
        EXPECT_FALSE(outcome.isModel);
        EXPECT_EQ(outcome.errorMessage, objFailure(fileName));
        EXPECT_THAT(outcome.warnings(),
                    ElementsAre("'" + fileName.toStdString() +
                                "' is not loaded: it has a line of more than 1048576 bytes, and a "
                                "stream ends at 2^31 - 1 bytes; split it into several files"));
    }
}

TEST_F(FilesInMotion, FourGigabytesOfBlanks)
{
    if (!longTests())
        GTEST_SKIP() << "set ORV_LONG_TESTS=1 to write and read 4 GB";
    const QString line = largeModel(QByteArray(1 << 20, ' '), 4096);
    EXPECT_EQ(loadByRoad(line, OBJRoad::Bytes).errorMessage, objFailure(line));
    const QString lines = largeModel(QByteArray((1 << 20) - 1, ' ') + '\n', 4096);
    const RoadOutcome outcome = loadByRoad(lines, OBJRoad::Bytes);
    EXPECT_TRUE(outcome.isModel);
    EXPECT_EQ(outcome.bundleCount, 0);
}

/// Zero bytes need no room on the disk.
TEST_F(FilesInMotion, FourGigabytesOfZeroBytes)
{
    if (!longTests())
        GTEST_SKIP() << "set ORV_LONG_TESTS=1 to read 4 GB";
    const QString fileName = model(Triangle);
    ASSERT_TRUE(QFile::resize(fileName, qint64(4) << 30));
    for (const OBJRoad road : BothRoads)
        EXPECT_EQ(loadByRoad(fileName, road).errorMessage, objFailure(fileName));
}

TEST_F(FilesInMotion, ALineOfAGigabyte)
{
    if (!longTests())
        GTEST_SKIP() << "set ORV_LONG_TESTS=1 to write and read 1 GB";
    for (const char *filling : {"x", "1 ", "#", " "}) {
        const QByteArray part = QByteArray(filling).repeated(1000000 / int(qstrlen(filling)));
        const QString fileName = largeModel(part, 1000);
        QFile file(fileName);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write("\n" + Triangle);
        file.close();
        EXPECT_EQ(triangles(loadByRoad(fileName, OBJRoad::Bytes)), 1);
    }
}

} // namespace
