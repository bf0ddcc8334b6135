// The program where the system gives it little memory.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <QtGui/QImage>

namespace {

using namespace OrvTest;
using ::testing::AnyOf;
using ::testing::HasSubstr;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool CanLimitMemory = false; // sanitizers need an address space of their own
#else
constexpr bool CanLimitMemory = true;
#endif

/// Three positions; then so many more, and as many faces.
QByteArray pairsOfLines(int count)
{
    return "v 0 0 0\nv 1 0 0\nv 0 1 0\n" + QByteArray("f 1 2 3\nv 1 2 3\n").repeated(count);
}

/// What does not differ from run to run.
std::string withoutTimes(const OrvRun &run)
{
    const std::string out = run.out.toStdString();
    return out.substr(0, out.find("\nMilliseconds"));
}

class LittleMemoryTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!CanLimitMemory)
            GTEST_SKIP() << "sanitizers need an address space of their own";
    }

    /// `orv info` where the address space ends at so many kilobytes.
    OrvRun infoWithin(int kilobytes, const QString &model, const QString &threads) const
    {
        return runOrvFromShell(
            QStringLiteral("ulimit -v %1; exec \"$0\" info --threads \"$2\" \"$1\"").arg(kilobytes),
            {model, threads});
    }

    const TemporaryModel _files;
};

/// A thread of a pool has a stack of 8 MB: some limits leave no room for one, some for one but
/// not for the next, and some for both but not for the model. None of that makes a difference.
TEST_F(LittleMemoryTest, AnyLimitGivesTheResultOrExitStatusThree)
{
    constexpr int Faces = 2'400'000;
    const QString model = _files.write(QStringLiteral("large.obj"), pairsOfLines(Faces));
    // Three floats and three indices for each "v" and "f", of four bytes.
    constexpr int NeverEnough = Faces / 1024 * (3 + 3) * 4;

    const OrvRun whole = runOrv({QStringLiteral("info"), model});
    ASSERT_EQ(whole.status, 0) << whole.err.constData();
    const std::string shown = model.toStdString();
    const std::string notLoaded = "orv: warning: '" + shown +
                                  "' is not loaded: there is not enough memory for it\n"
                                  "orv: Failed to load OBJ file '" +
                                  shown + "': not enough memory.\n";
    for (const char *threads : {"1", "2", "8"}) {
        int refused = 0;
        int loaded = 0;
        for (int limit = 90'000; loaded == 0 && limit < 3'000'000; limit += 35'000) {
            SCOPED_TRACE("--threads " + std::string(threads) + ", " + std::to_string(limit) +
                         " kB");
            const OrvRun run = infoWithin(limit, model, QLatin1String(threads));
            if (run.status == 0) {
                EXPECT_GT(limit, NeverEnough);
                EXPECT_EQ(withoutTimes(run), withoutTimes(whole));
                EXPECT_EQ(run.err, "");
                ++loaded;
                continue;
            }
            EXPECT_EQ(run.status, 3);
            EXPECT_EQ(run.out, "");
            EXPECT_THAT(run.err.toStdString(),
                        AnyOf(notLoaded, "orv: There is not enough memory.\n"));
            ++refused;
        }
        EXPECT_GT(refused, 0);
        EXPECT_EQ(loaded, 1);
    }
}

/// Threads get a stack of the largest size that a stack may have. There is room for everything
/// but that.
TEST_F(LittleMemoryTest, ThreadsThatCannotBeStartedAreDoneWithout)
{
    const QString model = _files.write(QStringLiteral("m.obj"), pairsOfLines(300'000));
    const auto runWithoutThreads = [](const QStringList &arguments) {
        return runOrvFromShell(
            QStringLiteral("ulimit -s 8000000; ulimit -v 4000000; exec \"$0\" \"$@\""), arguments);
    };
    const QString output = _files.path(QStringLiteral("out.obj"));
    const QStringList calls[] = {
        {QStringLiteral("info"), QStringLiteral("--threads"), QStringLiteral("4")},
        {QStringLiteral("check")},
        {QStringLiteral("fix"), QStringLiteral("-o"), output}};
    for (const QStringList &call : calls) {
        SCOPED_TRACE(call.join(QLatin1Char(' ')).toStdString());
        const OrvRun free = runOrv(call + QStringList(model));
        const OrvRun run = runWithoutThreads(call + QStringList(model));
        EXPECT_EQ(free.status, 0);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(withoutTimes(run), withoutTimes(free));
        EXPECT_EQ(run.err.toStdString(), free.err.toStdString());
    }
    const OrvRun verbose =
        runWithoutThreads(calls[0] + QStringList{QStringLiteral("--verbose"), model});
    EXPECT_THAT(verbose.err.toStdString(), HasSubstr("QThread::start: Thread creation error"));
}

/// A square with a texture that Qt would convert on several threads.
class DrawnWithLittle : public LittleMemoryTest
{
protected:
    void SetUp() override
    {
        LittleMemoryTest::SetUp();
        QImage image(300, 700, QImage::Format_Grayscale8);
        image.fill(128);
        ASSERT_TRUE(image.save(_files.path(QStringLiteral("t.png"))));
        _files.write(QStringLiteral("m.mtl"), "newmtl m\nmap_Kd t.png\n");
        _model = _files.write(QStringLiteral("m.obj"),
                              "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\n"
                              "usemtl m\nf 1/1 2/2 3/3\n");
    }

    QByteArray bytesOfPicture(const QString &name) const
    {
        QFile file(_files.path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    OrvRun renderWithin(const QString &limits, const QString &output) const
    {
        QFile::remove(_files.path(output));
        return runOrvFromShell(limits + QStringLiteral("; exec \"$0\" render \"$1\" -o \"$2\""),
                               {_model, _files.path(output)});
    }

    QString _model;
};

TEST_F(DrawnWithLittle, PicturesAreDrawnWithoutThreads)
{
    for (const char *format : {"png", "bmp", "pgm", "pbm", "ppm", "jpg", "xpm", "xbm"}) {
        SCOPED_TRACE(format);
        const QString name = QStringLiteral("out.") + QLatin1String(format);
        ASSERT_EQ(renderWithin(QStringLiteral("true"), name).status, 0);
        const QByteArray expected = bytesOfPicture(name);
        const OrvRun run =
            renderWithin(QStringLiteral("ulimit -s 8000000; ulimit -v 4000000"), name);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(bytesOfPicture(name), expected);
    }
}

/// The driver itself would crash, abort or wait under some of these.
TEST_F(DrawnWithLittle, AnyLimitGivesThePictureOrExitStatusThree)
{
    const QString name = QStringLiteral("out.png");
    ASSERT_EQ(renderWithin(QStringLiteral("true"), name).status, 0);
    const QByteArray expected = bytesOfPicture(name);
    const std::string noPicture = "orv: There is no memory for a picture of 800x600 pixels.\n";
    int refused = 0;
    for (int limit = 100'000; limit <= 1'000'000; limit += 50'000) {
        SCOPED_TRACE(limit);
        const OrvRun run = renderWithin(QStringLiteral("ulimit -v %1").arg(limit), name);
        EXPECT_EQ(run.out, "");
        if (run.status == 0) {
            EXPECT_EQ(run.err, "");
            EXPECT_EQ(bytesOfPicture(name), expected);
            continue;
        }
        ++refused;
        EXPECT_EQ(run.status, 3);
        EXPECT_FALSE(QFile::exists(_files.path(name)));
        EXPECT_THAT(run.err.toStdString(), AnyOf("orv: There is not enough memory for OpenGL.\n",
                                                 noPicture, "orv: There is not enough memory.\n"));
    }
    EXPECT_GT(refused, 3);
    EXPECT_EQ(renderWithin(QStringLiteral("ulimit -v 4000000"), name).status, 0);
}

} // namespace
