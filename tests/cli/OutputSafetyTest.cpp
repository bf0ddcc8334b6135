// Outputs that would destroy an input, and streams that are not there.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <QtGui/QImage>

#include <unistd.h>

namespace {

using namespace OrvTest;
using ::testing::StartsWith;

class OutputSafetyTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QImage red(4, 4, QImage::Format_RGB32);
        red.fill(Qt::red);
        ASSERT_TRUE(red.save(_files.path(QStringLiteral("t.png"))));
        _files.write(QStringLiteral("m.mtl"), "newmtl m\nmap_Kd t.png\n");
        _model = _files.write(QStringLiteral("m.obj"),
                              "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl m\nf 1 2 3\n");
    }

    QByteArray bytes(const QString &path) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// \param output a file that is there and must stay as it is.
    void expectRefused(const char *command, const QString &output, const char *what) const
    {
        const QByteArray before = bytes(output);
        const OrvRun run = runOrv({QLatin1String(command), _model, QStringLiteral("-o"), output});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err.toStdString(), "orv: Cannot write '" + output.toStdString() +
                                             "': it is " + what + ", which would be lost.\n");
        EXPECT_EQ(bytes(output), before);
    }

    QString hardLink(const QString &target, const char *name) const
    {
        const QString path = _files.path(QLatin1String(name));
        EXPECT_EQ(::link(target.toLocal8Bit().constData(), path.toLocal8Bit().constData()), 0);
        return path;
    }

    TemporaryModel _files;
    QString _model;
};

TEST_F(OutputSafetyTest, TheModelIsNotOverwritten)
{
    expectRefused("dump", _model, "the model itself");
    expectRefused("dump", _files.directory() + QStringLiteral("/./m.obj"), "the model itself");
    const QString link = _files.path(QStringLiteral("link.png"));
    ASSERT_TRUE(QFile::link(_model, link));
    expectRefused("render", link, "the model itself");
    expectRefused("render", hardLink(_model, "hard.png"), "the model itself");
}

TEST_F(OutputSafetyTest, NeitherAreItsLibrariesAndTextures)
{
    const QString library = _files.path(QStringLiteral("m.mtl"));
    const QString texture = _files.path(QStringLiteral("t.png"));
    expectRefused("dump", library, "a material library of the model");
    expectRefused("render", hardLink(library, "m.png"), "a material library of the model");
    expectRefused("render", texture, "a texture of the model");
    expectRefused("dump", texture, "a texture of the model");
}

TEST_F(OutputSafetyTest, OtherFilesAreReplaced)
{
    const QString output = _files.write(QStringLiteral("out.json"), "older");
    EXPECT_EQ(runOrv({QStringLiteral("dump"), _model, QStringLiteral("-o"), output}).status, 0);
    EXPECT_THAT(bytes(output).toStdString(), StartsWith("{"));
}

TEST_F(OutputSafetyTest, IconsHaveAtMost256Pixels)
{
    for (const char *name : {"out.ico", "out.cur"}) {
        const QString output = _files.path(QLatin1String(name));
        const QStringList call{QStringLiteral("render"), _model, QStringLiteral("-o"), output,
                               QStringLiteral("--size")};
        const OrvRun run = runOrv(call + QStringList(QStringLiteral("16x257")));
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.toStdString(), "orv: Cannot write '" + output.toStdString() +
                                             "': an icon has at most 256 pixels on a side; use "
                                             "--size.\n");
        EXPECT_FALSE(QFile::exists(output));
        EXPECT_EQ(runOrv(call + QStringList(QStringLiteral("256x256"))).status, 0);
        EXPECT_EQ(QImage(output).size(), QSize(256, 256));
    }
}

TEST_F(OutputSafetyTest, HelpThatCannotBeWrittenIsAnError)
{
    for (const char *call : {"--help", "--version", "render --help", "info -h"}) {
        const OrvRun run =
            runOrvFromShell(QStringLiteral("exec \"$0\" %1 > /dev/full").arg(QLatin1String(call)));
        EXPECT_EQ(run.status, 2) << call;
        EXPECT_EQ(run.err, "orv: Cannot write to stdout: No space left on device.\n") << call;
    }
}

TEST_F(OutputSafetyTest, ClosedStreamsAreNotTakenForFiles)
{
    // Without stdout, the first file opened would get its number.
    const OrvRun run = runOrvFromShell(QStringLiteral("exec \"$0\" info \"$1\" >&-"), {_model});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "orv: Cannot write to stdout: Bad file descriptor.\n");

    const QString picture = _files.path(QStringLiteral("out.png"));
    const OrvRun all = runOrvFromShell(
        QStringLiteral("exec \"$0\" render \"$1\" -o \"$2\" <&- >&- 2>&-"), {_model, picture});
    EXPECT_EQ(all.status, 0);
    EXPECT_FALSE(QImage(picture).isNull());
}

} // namespace
