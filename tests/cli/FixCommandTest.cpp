#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QFile>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const QString Fix = QStringLiteral("fix");
const QString Output = QStringLiteral("-o");
const QString DryRun = QStringLiteral("--dry-run");

class FixCommandTest : public ::testing::Test
{
protected:
    QString write(const char *name, const QByteArray &contents)
    {
        return _files.write(QString::fromUtf8(name), contents);
    }

    QByteArray contents(const QString &path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    std::string line(const QString &file, const char *rest) const
    {
        return file.toStdString() + rest + '\n';
    }

    TemporaryModel _files;
    const QByteArray _triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    const QString _sound = write("sound.obj", _triangle + "f 1 2 3\n");
    const QString _broken = write("broken.obj", _triangle + "f 1 2 \\\n3\nf 1 \\\n2 3\n");
    const QString _hopeless = write("hopeless.obj", _triangle + "f 1 2 three\nf 1 2 \\\n3\n");
    const QString _output = _files.path(QStringLiteral("output.obj"));
};

TEST_F(FixCommandTest, WritesASoundModelAsItIs)
{
    const OrvRun run = runOrv({Fix, _sound, Output, _output});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(contents(_output), contents(_sound));
}

TEST_F(FixCommandTest, PrintsALineForEachChange)
{
    const OrvRun run = runOrv({Fix, _broken, Output, _output});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(),
              line(_broken,
                   ":4: fixed: The line is joined with the one that continues it. 2 times. "
                   "[line-continued]"));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(contents(_output), _triangle + "f 1 2 3\nf 1 2 3\n");
}

TEST_F(FixCommandTest, SaysWhatItCannotMend)
{
    const OrvRun run = runOrv({Fix, _hopeless, Output, _output});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.toStdString(),
              line(_hopeless, ":5: fixed: The line is joined with the one that continues it. "
                              "[line-continued]") +
                  line(_output,
                       ":4: error: 1 face cannot be read: \"three\" is no corner. 1 face is "
                       "not drawn. [face-unreadable]"));
    EXPECT_EQ(contents(_output), _triangle + "f 1 2 three\nf 1 2 3\n");
}

TEST_F(FixCommandTest, OnlyTellsInADryRun)
{
    for (const QStringList &output : {QStringList(), QStringList{Output, _output}}) {
        const OrvRun run = runOrv(QStringList{Fix, _hopeless, DryRun} + output);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out.toStdString(),
                  line(_hopeless, ":5: to fix: The line is joined with the one that continues it. "
                                  "[line-continued]") +
                      line(_hopeless, ":4: error: 1 face cannot be read: \"three\" is no corner. 1 "
                                      "face is not drawn. [face-unreadable]"));
        EXPECT_EQ(contents(_output), "(none)");
    }
}

TEST_F(FixCommandTest, SaysWhyItCannotWrite)
{
    const OrvRun run = runOrv({Fix, _broken, Output, _broken});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.toStdString(), "orv: '" + _broken.toStdString() +
                                         "' cannot be fixed: cannot write '" +
                                         _broken.toStdString() + "': it is a file of the input.\n");
    const OrvRun gone = runOrv({Fix, _files.path(QStringLiteral("gone.obj")), Output, _output});
    EXPECT_EQ(gone.status, 2);
    EXPECT_THAT(gone.err.toStdString(), HasSubstr("no such file"));
}

TEST_F(FixCommandTest, LeavesAnOlderOutputOnAFullDisk)
{
    const QString large = write("large.obj", _triangle + "f 1 2 \\\n3\n" + QByteArray(2000, '\n'));
    write("output.obj", "# an older one\n");
    const OrvRun run = runOrvWithSmallFiles({Fix, large, Output, _output});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.toStdString(), "orv: '" + large.toStdString() +
                                         "' cannot be fixed: cannot write '" +
                                         _output.toStdString() + "': File too large.\n");
    EXPECT_EQ(contents(_output), "# an older one\n");
}

TEST_F(FixCommandTest, PrintsNoControlCharacters)
{
    const QString model = write("red.obj", _triangle + "usemtl \x1b[31mred\nf 1 2 3\n");
    const OrvRun run = runOrv({Fix, model, Output, _output});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(),
              line(model, ":4: fixed: The material \"\\x1b[31mred\" is defined, in the default "
                          "material's colours. [material-undefined]"));
}

TEST_F(FixCommandTest, LooksAtNoLibraryOutsideOfWithin)
{
    const QString model =
        write("inside/model.obj", "mtllib ../P.mtl\n" + _triangle + "usemtl red\nf 1 2 3\n");
    write("p.mtl", "newmtl red\nTr 0.5\n");
    const QStringList within{QStringLiteral("--within"), _files.path(QStringLiteral("inside"))};
    const QString output = _files.path(QStringLiteral("inside/output.obj"));
    const OrvRun run = runOrv(QStringList{Fix, model, Output, output} + within);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(),
              "model.obj:1: fixed: The library \"../P.mtl\" lies outside of what may be read: its "
              "name becomes a comment. [library-missing]\n"
              "model.obj:5: fixed: The material \"red\" is defined, in the default material's "
              "colours. [material-undefined]\n");
    const OrvRun outside = runOrv(QStringList{Fix, _broken, Output, output} + within);
    EXPECT_EQ(outside.status, 2);
    EXPECT_THAT(outside.err.toStdString(), HasSubstr("cannot be fixed"));
}

TEST_F(FixCommandTest, WantsAnOutput)
{
    for (const QStringList &arguments :
         {QStringList{Fix, _broken}, QStringList{Fix, _broken, Output, QString()}}) {
        const OrvRun run = runOrv(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.err.toStdString(), StartsWith("orv: The output file has no name"));
    }
    const OrvRun run = runOrv({Fix, _broken, Output, QStringLiteral("-")});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err.toStdString(), StartsWith("orv: A mended model needs a file"));
    EXPECT_FALSE(QFile::exists(QStringLiteral("-")));
}

} // namespace
