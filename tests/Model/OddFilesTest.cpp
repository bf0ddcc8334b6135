// Files that are no files, are very large, or name themselves and others a million times.
// ORV_LONG_TESTS=1 adds those of gigabytes.
#include "support/TroublesomeFiles.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <chrono>
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

bool longTests()
{
    return qEnvironmentVariableIntValue("ORV_LONG_TESTS") != 0;
}

class OddFiles : public TroublesomeFiles
{
protected:
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
};

struct SpecialFile
{
    const char *name;
    QString path;
    bool isWarnedOf; ///< what is missing or a directory is said by the error alone
};

class SpecialFiles : public OddFiles
{
protected:
    void SetUp() override
    {
        OddFiles::SetUp();
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
        OddFiles::TearDown();
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
        const UploadedModel outcome = expectSameOnBothPaths(file.path);
        EXPECT_TRUE(outcome.isNull);
        EXPECT_EQ(outcome.error, objFailure(file.path));
        EXPECT_THAT(outcome.warnings(), ElementsAreArray(expectedWarnings(file)));
    }
}

TEST_F(SpecialFiles, AreNoLibraries)
{
    for (const SpecialFile &file : special) {
        SCOPED_TRACE(file.name);
        const UploadedModel outcome =
            expectSameOnBothPaths(model("mtllib " + file.path.toUtf8() + '\n' + Triangle));
        EXPECT_TRUE(outcome.isNull);
        EXPECT_EQ(outcome.error, mtlFailure(file.path));
        EXPECT_THAT(outcome.warnings(), ElementsAreArray(expectedWarnings(file)));
    }
}

TEST_F(OddFiles, TheNullDeviceIsAnEmptyFile)
{
    const UploadedModel empty = expectSameOnBothPaths(QStringLiteral("/dev/null"));
    EXPECT_FALSE(empty.isNull);
    EXPECT_EQ(empty.bundles.size(), 0u);
    EXPECT_THAT(empty.messages, IsEmpty());
    const UploadedModel drawn = expectSameOnBothPaths(model("mtllib /dev/null\n" + Triangle));
    EXPECT_EQ(drawn.bundle().triangleCount(), 1);
    EXPECT_THAT(drawn.warnings(), IsEmpty());
}

/// Files of the system that claim to be regular and empty, whatever they hold.
TEST_F(OddFiles, FilesThatSayTheyAreEmptyAreEmpty)
{
    const QString status = QStringLiteral("/proc/self/status");
    if (!QFile::exists(status))
        GTEST_SKIP() << "no " << status.toStdString();
    const UploadedModel outcome = expectSameOnBothPaths(status);
    EXPECT_FALSE(outcome.isNull);
    EXPECT_EQ(outcome.bundles.size(), 0u);
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

TEST_F(OddFiles, FilesThatMayNotBeReadCannotBeOpened)
{
    const QString library = files.write(QStringLiteral("secret.mtl"), "newmtl a\n");
    const QString secret = files.write(QStringLiteral("secret.obj"), Triangle);
    const QString naming = model("mtllib secret.mtl\n" + Triangle);
    for (const QString &path : {library, secret})
        ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::Permissions()));
    ASSERT_EQ(chmod(files.directory().toLocal8Bit().constData(), 0755), 0);
    ASSERT_EQ(chmod(naming.toLocal8Bit().constData(), 0644), 0);

    const NobodyInParticular nobody;
    EXPECT_EQ(expectSameOnBothPaths(secret).error, objFailure(secret));
    EXPECT_EQ(expectSameOnBothPaths(naming).error, mtlFailure(library));
}

/// However a load ends, the files it has opened are closed.
TEST_F(SpecialFiles, LeaveNothingOpen)
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    if (!descriptors.exists())
        GTEST_SKIP() << "no " << descriptors.path().toStdString();
    const auto loadAll = [this] {
        for (const SpecialFile &file : special) {
            loadByPath(file.path, LoaderPath::Fast);
            loadByPath(model("mtllib " + file.path.toUtf8() + '\n'), LoaderPath::Lines);
        }
        files.write(QStringLiteral("m.mtl"), "newmtl a\n");
        loadByPath(model("mtllib m.mtl\n" + Triangle), LoaderPath::Fast);
    };
    const auto openFiles = [&] { return QDir(descriptors.path()).entryList(QDir::AllEntries); };
    loadAll();
    const QStringList before = openFiles();
    loadAll();
    EXPECT_EQ(openFiles().size(), before.size());
}

/// Reading the library for each line would take twenty thousand times 300 kB.
TEST_F(OddFiles, ALibraryNamedManyTimesIsReadOnce)
{
    QByteArray library = "newmtl a\nKd 1 0 0\nnewmtl a\nKd 0 1 0\n";
    library += QByteArray("# nothing\n").repeated(30000);
    files.write(QStringLiteral("m.mtl"), library);
    QByteArray spellings;
    for (int i = 0; i < 20000; ++i)
        spellings += "mtllib " + QByteArray("./").repeated(i % 20) + "m.mtl\n";
    const std::clock_t begin = std::clock();
    const UploadedModel outcome = expectSameOnBothPaths(model(spellings + "usemtl a\n" + Triangle));
    EXPECT_LT(std::clock() - begin, 20 * CLOCKS_PER_SEC);
    EXPECT_THAT(outcome.bundle().materialNames(), ElementsAre(QStringLiteral("a")));
    EXPECT_EQ(outcome.bundle().triangleCount(), 1);
}

TEST_F(OddFiles, AModelMayBeItsOwnLibrary)
{
    const UploadedModel outcome = expectSameOnBothPaths(
        model("newmtl a\nKd 1 0 0\nmtllib model.obj\nmtllib ./model.obj\nusemtl a\n" + Triangle));
    EXPECT_THAT(outcome.bundle().materialNames(), ElementsAre(QStringLiteral("a")));
    EXPECT_THAT(outcome.warnings(), IsEmpty());
}

TEST_F(OddFiles, ManyMaterialGroups)
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
    const UploadedModel outcome = expectSameOnBothPaths(model("mtllib m.mtl\n" + Triangle + faces));
    EXPECT_EQ(outcome.bundle().commands.size(), count + 1u);
    EXPECT_EQ(outcome.bundle().vertexCount, 3u);
}

TEST_F(OddFiles, BlanksAndNothingElse)
{
    const UploadedModel outcome = expectSameOnBothPaths(largeModel(QByteArray(1 << 20, ' '), 16));
    EXPECT_FALSE(outcome.isNull);
    EXPECT_EQ(outcome.bundles.size(), 0u);
}

TEST_F(OddFiles, ALineThatIsTooLongIsRefused)
{
    OBJScanLimits limits;
    limits.chunkBytes = 1 << 16;
    limits.lineBytes = 1 << 20;
    for (const char filling : {' ', 'x', '\0', '1'}) {
        const QString fileName = model(
            Triangle + QByteArray(int(limits.lineBytes + 2 * limits.chunkBytes), filling) + '\n');
        const UploadedModel outcome = loadByPath(fileName, LoaderPath::Fast, limits);
        EXPECT_TRUE(outcome.isNull);
        EXPECT_EQ(outcome.error, objFailure(fileName));
        EXPECT_THAT(outcome.warnings(),
                    ElementsAre("'" + fileName.toStdString() +
                                "' is not loaded: it has a line of more than 1048576 bytes, and a "
                                "stream ends at 2^31 - 1 bytes; split it into several files"));
    }
}

TEST_F(OddFiles, FourGigabytesOfBlanks)
{
    if (!longTests())
        GTEST_SKIP() << "set ORV_LONG_TESTS=1 to write and read 4 GB";
    const QString line = largeModel(QByteArray(1 << 20, ' '), 4096);
    EXPECT_EQ(loadByPath(line, LoaderPath::Fast).error, objFailure(line));
    const QString lines = largeModel(QByteArray((1 << 20) - 1, ' ') + '\n', 4096);
    const UploadedModel outcome = loadByPath(lines, LoaderPath::Fast);
    EXPECT_FALSE(outcome.isNull);
    EXPECT_EQ(outcome.bundles.size(), 0u);
}

/// Zero bytes need no room on the disk.
TEST_F(OddFiles, FourGigabytesOfZeroBytes)
{
    if (!longTests())
        GTEST_SKIP() << "set ORV_LONG_TESTS=1 to read 4 GB";
    const QString fileName = model(Triangle);
    ASSERT_TRUE(QFile::resize(fileName, qint64(4) << 30));
    for (const LoaderPath path : BothPaths)
        EXPECT_EQ(loadByPath(fileName, path).error, objFailure(fileName));
}

TEST_F(OddFiles, ALineOfAGigabyte)
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
        EXPECT_EQ(loadByPath(fileName, LoaderPath::Fast).bundle().triangleCount(), 1);
    }
}

} // namespace
