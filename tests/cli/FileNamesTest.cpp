// Names of files that are no text: a Latin-1 name where the locale is UTF-8, for example.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QFile>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;

/// Qt cannot remove files of such names.
class FileNamesTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        runOrvFromShell(QStringLiteral("rm -rf -- \"$1\"/*"), {files.directory()});
    }

    TemporaryModel files;
};

/// Writes a model whose name holds the byte E9, with its library beside it, and runs orv on it.
/// \param script what comes behind the model's name, and before: a shell's text.
OrvRun runOnLatin1(const TemporaryModel &files, const char *script)
{
    files.write(QStringLiteral("m.mtl"), "newmtl m\n");
    files.write(QStringLiteral("plain.obj"),
                "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl m\nf 1 2 3\n");
    return runOrvFromShell(
        QStringLiteral("cd \"$1\" && name=$(printf 'caf\\351.obj') && mv plain.obj \"$name\" && ") +
            QLatin1String(script),
        {files.directory()});
}

TEST_F(FileNamesTest, AModelOfAnyNameIsLoaded)
{
    const OrvRun run = runOnLatin1(files, "exec \"$0\" info \"$name\"");
    EXPECT_EQ(run.status, 0) << run.err.constData();
    EXPECT_THAT(run.out.toStdString(), HasSubstr("caf\\xe9.obj\n"));
    EXPECT_THAT(run.out.toStdString(), HasSubstr("\n  triangles                            1\n"));
}

TEST_F(FileNamesTest, SoIsOneInADirectoryOfAnyName)
{
    const OrvRun run = runOnLatin1(files, "dir=$(printf '\\377\\303') && mkdir \"$dir\" && "
                                          "mv m.mtl \"$name\" \"$dir\" && "
                                          "exec \"$0\" dump \"$dir/$name\"");
    EXPECT_EQ(run.status, 0) << run.err.constData();
    EXPECT_EQ(valueAt(run.json(), "bundles.0.commands.0.material").toString(), QStringLiteral("m"));
}

TEST_F(FileNamesTest, SoIsOneInACurrentDirectoryOfAnyName)
{
    const OrvRun run = runOnLatin1(files, "dir=$(printf '\\377\\303') && mkdir \"$dir\" && "
                                          "mv m.mtl \"$name\" \"$dir\" && cd \"$dir\" && "
                                          "mv \"$name\" m.obj && exec \"$0\" dump m.obj");
    EXPECT_EQ(run.status, 0) << run.err.constData();
    EXPECT_EQ(valueAt(run.json(), "bundles.0.commands.0.material").toString(), QStringLiteral("m"));
}

TEST_F(FileNamesTest, OutputsMayHaveAnyName)
{
    const OrvRun run =
        runOnLatin1(files, "out=$(printf 'p\\200.png') && "
                           "\"$0\" render \"$name\" -o \"$out\" --size 8x8 && test -s \"$out\"");
    EXPECT_EQ(run.status, 0) << run.err.constData();
}

TEST_F(FileNamesTest, TextsAreReadAsEver)
{
    // What is no text within a file is not its name's matter.
    files.write(QStringLiteral("m.mtl"), "newmtl \xe9\n");
    files.write(QStringLiteral("plain.obj"),
                "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl \xe9\nf 1 2 3\n");
    const QString script = QStringLiteral("cd \"$1\" && cp plain.obj \"$(printf '\\351')\" && "
                                          "exec \"$0\" dump \"$(printf '\\351')\"");
    const OrvRun odd = runOrvFromShell(script, {files.directory()});
    const OrvRun plain = runOrv({QStringLiteral("dump"), files.path(QStringLiteral("plain.obj"))});
    EXPECT_EQ(odd.status, 0);
    EXPECT_EQ(odd.out, plain.out);
}

TEST_F(FileNamesTest, AMissingOneIsToldByItsBytes)
{
    const OrvRun run =
        runOrvFromShell(QStringLiteral("exec \"$0\" info \"$(printf '/none/\\351.obj')\""));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err.toStdString(), HasSubstr("'/none/\\xe9.obj'"));
}

} // namespace
