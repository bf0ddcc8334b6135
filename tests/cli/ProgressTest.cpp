// The sign of life on a terminal. The test holds a lease on the model: opening it lasts
// until the test lets go, so nothing here depends on how fast the machine is.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr int PatienceMs = 60 * 1000;

/// A terminal that nobody sits at.
class Terminal
{
public:
    Terminal() : _master(posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (_master < 0 || grantpt(_master) != 0 || unlockpt(_master) != 0)
            ADD_FAILURE() << "no pseudo terminal";
        // Held open, lest the terminal hang up when the program ends.
        _slave = open(ptsname(_master), O_RDWR | O_NOCTTY);
    }
    ~Terminal()
    {
        close(_slave);
        close(_master);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    QString name() const { return QString::fromLocal8Bit(ptsname(_master)); }

    /// What was printed since the last call, waiting for some at most `waitMs`.
    QByteArray read(int waitMs) const
    {
        pollfd request{_master, POLLIN, 0};
        if (poll(&request, 1, waitMs) <= 0)
            return {};
        QByteArray bytes(4096, '\0');
        const ssize_t count = ::read(_master, bytes.data(), size_t(bytes.size()));
        return count > 0 ? bytes.left(int(count)) : QByteArray();
    }

    QByteArray readUntil(const QByteArray &part) const
    {
        QElapsedTimer timer;
        timer.start();
        QByteArray text;
        while (!text.contains(part) && timer.elapsed() < PatienceMs)
            text += read(100);
        return text;
    }

private:
    int _master;
    int _slave;
};

class ProgressTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        _model = _files.write(QStringLiteral("slow.obj"), "");
        signal(SIGIO, SIG_IGN); // says that somebody waits for the lease
        _leased = open(_model.toLocal8Bit().constData(), O_RDWR | O_CLOEXEC);
        ASSERT_GE(_leased, 0);
        if (fcntl(_leased, F_SETLEASE, F_WRLCK) != 0)
            GTEST_SKIP() << "no leases on the files of this system";
    }

    void TearDown() override { close(_leased); }

    void start(const QString &standardError, const QStringList &options = {})
    {
        _process.setStandardErrorFile(standardError, QIODevice::Append);
        _process.start(orvProgram(), QStringList{QStringLiteral("info"), _model} + options);
        ASSERT_TRUE(_process.waitForStarted());
    }

    /// Lets the load come to its end, that of an empty file.
    void finish()
    {
        ASSERT_EQ(fcntl(_leased, F_SETLEASE, F_UNLCK), 0);
        ASSERT_TRUE(_process.waitForFinished(PatienceMs));
        EXPECT_EQ(_process.exitCode(), 0);
        EXPECT_THAT(_process.readAllStandardOutput().toStdString(), HasSubstr("triangles"));
    }

    TemporaryModel _files;
    QString _model;
    QProcess _process;
    int _leased = -1;
};

TEST_F(ProgressTest, ATerminalSeesABarThatIsWipedOut)
{
    const Terminal terminal;
    start(terminal.name());
    QByteArray shown = terminal.readUntil(" s\r[");
    EXPECT_THAT(shown.toStdString(), StartsWith("\r[====                ] loading slow.obj ("));
    finish();
    shown += terminal.readUntil("\x1b[K");
    const int wipe = shown.indexOf("\r\x1b[K");
    ASSERT_GT(wipe, 0);
    EXPECT_FALSE(shown.left(wipe).contains('\n'));
    EXPECT_FALSE(shown.mid(wipe).contains("loading"));
}

TEST_F(ProgressTest, AFileDoesNot)
{
    const QString log = _files.write(QStringLiteral("log"), "");
    start(log);
    // Longer than the patience after which a bar would be shown.
    EXPECT_FALSE(_process.waitForFinished(1000));
    finish();
    QFile file(log);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(file.readAll().contains("loading"));
}

TEST_F(ProgressTest, NorDoesATerminalThatShowsDebugMessages)
{
    const Terminal terminal;
    start(terminal.name(), {QStringLiteral("--verbose")});
    EXPECT_FALSE(_process.waitForFinished(1000));
    finish();
    EXPECT_FALSE(terminal.read(0).contains("loading"));
}

} // namespace
