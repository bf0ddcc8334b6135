// Ctrl-C, threads, and models from standard input, as a shell sees them.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>

#include <signal.h>

namespace {

using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr int PatienceMs = 60 * 1000;

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

/// The status that a shell gives to a process that a signal interrupts.
constexpr int Interrupted = 128 + SIGINT;

/// Whether a process has come to where it handles the signal itself.
bool handles(int signal, qint64 process)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("SigCgt:"))
            return line.mid(7).trimmed().toULongLong(nullptr, 16) >> (signal - 1) & 1;
    }
    return false;
}

TEST(InterruptionTest, EndsAProgramThatWaitsForItsInput)
{
    QProcess orv;
    orv.start(orvProgram(), {QStringLiteral("info"), QStringLiteral("-")});
    ASSERT_TRUE(orv.waitForStarted());
    orv.write(Triangle);
    ASSERT_TRUE(orv.waitForBytesWritten(PatienceMs));
    QElapsedTimer timer;
    timer.start();
    while (!handles(SIGINT, orv.processId()) && timer.elapsed() < PatienceMs)
        EXPECT_FALSE(orv.waitForFinished(1));
    EXPECT_FALSE(orv.waitForFinished(300)); // more may come
    ASSERT_EQ(kill(static_cast<pid_t>(orv.processId()), SIGINT), 0);
    ASSERT_TRUE(orv.waitForFinished(PatienceMs));
    EXPECT_EQ(orv.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(orv.exitCode(), Interrupted);
    EXPECT_THAT(orv.readAllStandardOutput().toStdString(), "");
}

/// Whether a process has a file open in a directory, also one without a name, beside `known`.
bool writesIn(const QString &directory, const QString &known, qint64 process)
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
    for (const QFileInfo &descriptor : descriptors.entryInfoList(QDir::Files | QDir::System)) {
        const QString target = descriptor.symLinkTarget();
        if (target.startsWith(directory) && target != known)
            return true;
    }
    return false;
}

/// The output of a dump grows for a while.
TEST(InterruptionTest, TakesAnUnfinishedOutputAway)
{
    const TemporaryModel files;
    QByteArray text;
    constexpr int Triangles = 100000;
    for (int i = 0; i < Triangles; ++i)
        text += "v " + QByteArray::number(i) + " 0 0\nv " + QByteArray::number(i) +
                " 1 0\nv 0 0.5 1\nf -3 -2 -1\n";
    const QString model = files.write(QStringLiteral("m.obj"), text);
    const QStringList before = QDir(files.directory()).entryList(QDir::Files | QDir::Hidden);
    const QString output = files.path(QStringLiteral("out.json"));
    QProcess orv;
    orv.start(orvProgram(), {QStringLiteral("dump"), model, QStringLiteral("-o"), output});
    ASSERT_TRUE(orv.waitForStarted());
    QElapsedTimer timer;
    timer.start();
    while (!writesIn(files.directory(), model, orv.processId()) && timer.elapsed() < PatienceMs) {
        if (orv.waitForFinished(1))
            break;
    }
    ASSERT_EQ(orv.state(), QProcess::Running) << "the output was finished too soon to be caught";
    ASSERT_EQ(kill(static_cast<pid_t>(orv.processId()), SIGINT), 0);
    ASSERT_TRUE(orv.waitForFinished(PatienceMs));
    EXPECT_EQ(orv.exitCode(), Interrupted);
    EXPECT_FALSE(QFileInfo::exists(output));
    EXPECT_EQ(QDir(files.directory()).entryList(QDir::Files | QDir::Hidden), before);
}

TEST(StandardInputTest, IsAModelWithLibrariesInTheCurrentDirectory)
{
    const TemporaryModel files;
    files.write(QStringLiteral("m.mtl"), "newmtl red\n");
    files.write(QStringLiteral("m.obj"), "mtllib m.mtl\nusemtl red\n" + Triangle);
    const OrvRun run = runOrvFromShell(
        QStringLiteral("cd \"$1\" && cat m.obj | \"$0\" info - --json"), {files.directory()});
    ASSERT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(valueAt(run.json(), "file.name").toString(), QStringLiteral("-"));
    EXPECT_EQ(valueAt(run.json(), "file.bytes").toInt(),
              QFile(files.path(QStringLiteral("m.obj"))).size());
    EXPECT_EQ(valueAt(run.json(), "materials.0.name").toString(), QStringLiteral("red"));
}

TEST(ThreadsOptionTest, ChangesNothingButTheTime)
{
    const TemporaryModel files;
    // Above the size from which several threads work.
    const QString model = files.write(QStringLiteral("m.obj"), Triangle.repeated(80000));
    QByteArray outputs[2];
    for (int i = 0; i < 2; ++i) {
        const OrvRun run = runOrv({QStringLiteral("dump"), model, QStringLiteral("--threads"),
                                   i == 0 ? QStringLiteral("1") : QStringLiteral("3")});
        ASSERT_EQ(run.status, 0);
        outputs[i] = run.out;
    }
    EXPECT_FALSE(outputs[0].isEmpty());
    EXPECT_EQ(outputs[0], outputs[1]);
}

TEST(ThreadsOptionTest, TakesNumbersOfThreadsOnly)
{
    for (const char *number : {"0", "-1", "257", "many", ""}) {
        const OrvRun run = runOrv({QStringLiteral("info"), QStringLiteral("m.obj"),
                                   QStringLiteral("--threads"), QString::fromLatin1(number)});
        EXPECT_EQ(run.status, 2) << number;
        EXPECT_THAT(run.err.toStdString(), HasSubstr("orv: '" + std::string(number) +
                                                     "' is no number of threads from 1 to 256.\n"));
    }
}

} // namespace
