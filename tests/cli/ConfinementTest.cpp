// --within: what lies outside of a directory is not read.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QImage>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::Not;

const char triangle[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl m\nf 1 2 3\n";

/// A directory "in" with a model, and a library and a texture beside that directory.
class ConfinementTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        _files.write(QStringLiteral("outside.mtl"), "newmtl m\nKd 1 0 0\n");
        QImage red(4, 4, QImage::Format_RGB32);
        red.fill(Qt::red);
        ASSERT_TRUE(red.save(_files.path(QStringLiteral("outside.png"))));
        _files.write(QStringLiteral("in/inside.mtl"), "newmtl m\nmap_Kd ../outside.png\n");
    }

    QString modelWith(const QByteArray &library)
    {
        return _files.write(QStringLiteral("in/m.obj"), "mtllib " + library + '\n' + triangle);
    }

    OrvRun confined(const QStringList &arguments) const
    {
        return runOrv(arguments +
                      QStringList{QStringLiteral("--within"), _files.path(QStringLiteral("in"))});
    }

    void link(const char *target, const char *name)
    {
        ASSERT_TRUE(
            QFile::link(_files.path(QLatin1String(target)), _files.path(QLatin1String(name))));
    }

    TemporaryModel _files;
};

const QString dump = QStringLiteral("dump");
const QString info = QStringLiteral("info");

TEST_F(ConfinementTest, WhatLiesInsideIsLoaded)
{
    _files.write(QStringLiteral("in/deeper/plain.mtl"), "newmtl m\nKd 0 1 0\n");
    const OrvRun run = confined({dump, modelWith("deeper/plain.mtl")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(valueAt(run.json(), "bundles.0.commands.0.count").toInt(), 3);
}

TEST_F(ConfinementTest, ALibraryOutsideIsRefused)
{
    link("outside.mtl", "in/link.mtl");
    const QByteArray absolute = _files.path(QStringLiteral("outside.mtl")).toLocal8Bit();
    const struct
    {
        QByteArray library;
        std::string shown;
    } rows[] = {{"../outside.mtl", "../outside.mtl"},
                {absolute, absolute.toStdString()},
                {"link.mtl", "link.mtl"},
                {"../none/x.mtl", "../none/x.mtl"},
                {"none/../../outside.mtl", "none/../../outside.mtl"}};
    for (const auto &row : rows) {
        const QString model = modelWith(row.library);
        for (const QStringList &call :
             {QStringList{dump, model}, QStringList{info, model},
              QStringList{QStringLiteral("render"), model, QStringLiteral("-o"),
                          _files.path(QStringLiteral("in/out.png"))}}) {
            const OrvRun run = confined(call);
            EXPECT_EQ(run.status, 1);
            EXPECT_EQ(run.out, "");
            EXPECT_EQ(run.err.toStdString(), "orv: 'm.obj' is not loaded: its library '" +
                                                 row.shown +
                                                 "' lies outside the directory of --within.\n");
        }
    }
}

TEST_F(ConfinementTest, EveryWayToWriteALibraryIsSeen)
{
    const QByteArray rest = QByteArray("mt\rllib ../outside.mtl\n") + triangle;
    const QByteArray utf8Mark = "\xef\xbb\xbf";
    QByteArray wide("\xff\xfe", 2);
    for (const char character : "mtllib ../outside.mtl\n" + QByteArray(triangle))
        wide += QByteArray(1, character) + '\0';
    const QByteArray texts[] = {rest, utf8Mark + "mtllib ../outside.mtl\n" + triangle, wide,
                                "\n \t mtllib\t../outside.mtl\n" + QByteArray(triangle),
                                "v 1 2 3\nmtllib ../outside.mtl"};
    for (const QByteArray &text : texts) {
        const OrvRun run = confined({dump, _files.write(QStringLiteral("in/m.obj"), text)});
        EXPECT_EQ(run.status, 1) << text.constData();
        EXPECT_THAT(run.err.toStdString(), HasSubstr("lies outside the directory of --within"));
    }
}

TEST_F(ConfinementTest, AModelOutsideIsRefused)
{
    const QString model = _files.write(QStringLiteral("m.obj"), triangle);
    EXPECT_EQ(confined({dump, model}).status, 1);
    link("m.obj", "in/m.obj");
    const OrvRun run = confined({dump, _files.path(QStringLiteral("in/m.obj"))});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.toStdString(), "orv: 'm.obj' lies outside the directory of --within.\n");
    // "in" is not the beginning of "inner".
    EXPECT_EQ(confined({dump, _files.write(QStringLiteral("inner/m.obj"), triangle)}).status, 1);
}

TEST_F(ConfinementTest, ATextureOutsideIsLeftOut)
{
    const QString picture = _files.path(QStringLiteral("in/out.png"));
    const QString model = modelWith("inside.mtl");
    const OrvRun run = confined({QStringLiteral("render"), model, QStringLiteral("-o"), picture});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(),
              "orv: warning: The texture '../outside.png' lies outside the directory of "
              "--within; drawn without it.\n");
}

TEST_F(ConfinementTest, WhetherATextureOutsideExistsIsNotTold)
{
    const OrvRun run = confined({info, modelWith("inside.mtl"), QStringLiteral("--json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(), "orv: warning: The texture '../outside.png' lies outside the "
                                     "directory of --within.\n");
    EXPECT_FALSE(valueAt(run.json(), "materials.0.textures.map_Kd.exists").toBool(true));
}

/// The system would cut such a name at the zero, and Qt complains of whoever asks for it.
TEST_F(ConfinementTest, NamesWithAZeroByteAreThoseOfNoFile)
{
    const QString picture = _files.path(QStringLiteral("in/out.png"));
    const QString render = QStringLiteral("render");
    const QString output = QStringLiteral("-o");
    const QString check = QStringLiteral("check");
    const QString fix = QStringLiteral("fix");
    const QString fixed = _files.path(QStringLiteral("in/fixed.obj"));
    _files.write(QStringLiteral("in/zero.mtl"), QByteArray("newmtl m\nmap_Kd a\0b.png\n", 23));
    _files.write(QStringLiteral("in/a"), "newmtl m\n");
    const std::string texture = "There is no texture \"a\\x00b.png\". [texture-missing]\n";
    const QString textured = modelWith("zero.mtl");
    const struct
    {
        QStringList call;
        std::string out;
        std::string err;
    } rows[] = {
        {{render, textured, output, picture},
         "",
         "orv: warning: The texture 'a\\x00b.png' does not exist; drawn without it.\n"},
        {{check, textured}, "zero.mtl:2: warning: " + texture, ""},
        {{fix, textured, output, fixed}, "zero.mtl:2: warning: " + texture, ""},
    };
    for (const auto &row : rows) {
        const OrvRun run = confined(row.call);
        EXPECT_EQ(run.out.toStdString(), row.out) << row.call[0].toStdString();
        EXPECT_EQ(run.err.toStdString(), row.err) << row.call[0].toStdString();
    }
    EXPECT_EQ(confined({info, textured}).err, "");

    const QString model = modelWith(QByteArray("a\0b.mtl", 7));
    for (const QStringList &call :
         {QStringList{info, model}, QStringList{dump, model}, {render, model, output, picture}}) {
        const OrvRun run = confined(call);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err.toStdString(),
                  "orv: Failed to load MTL file 'a\\x00b.mtl': no such file.\n");
    }
    const OrvRun checked = confined({check, model});
    EXPECT_EQ(checked.err, "");
    EXPECT_EQ(checked.out,
              "m.obj:1: error: The material library \"a\\x00b.mtl\" cannot be opened. 1 "
              "face is not drawn. [library-missing]\n");
    const OrvRun mended = confined({fix, model, output, fixed});
    EXPECT_EQ(mended.err, "");
    EXPECT_THAT(mended.out.toStdString(),
                HasSubstr("The library \"a\\x00b.mtl\" is not there: its name becomes a comment."));
}

TEST_F(ConfinementTest, PathsAreRelative)
{
    _files.write(QStringLiteral("in/plain.mtl"), "newmtl m\nmap_Kd here.png\n");
    const QString model = modelWith("plain.mtl");
    const OrvRun json = confined({info, model, QStringLiteral("--json")});
    EXPECT_EQ(valueAt(json.json(), "file.name").toString(), QStringLiteral("m.obj"));
    EXPECT_EQ(valueAt(json.json(), "materials.0.textures.map_Kd.path").toString(),
              QStringLiteral("here.png"));
    EXPECT_EQ(
        valueAt(confined({dump, model}).json(), "bundles.0.materials.0.textures.map_Kd").toString(),
        QStringLiteral("here.png"));
    const OrvRun text = confined({info, model});
    EXPECT_THAT(text.out.toStdString(), Not(HasSubstr(_files.directory().toStdString())));
    const OrvRun missing = confined({info, modelWith("gone.mtl")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err.toStdString(), HasSubstr("Failed to load MTL file 'gone.mtl'"));
}

TEST_F(ConfinementTest, TheDirectoryMustExist)
{
    const OrvRun run = runOrv({info, modelWith("inside.mtl"), QStringLiteral("--within"),
                               _files.path(QStringLiteral("none"))});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err.toStdString(),
                HasSubstr("orv: There is no directory '" +
                          _files.path(QStringLiteral("none")).toStdString() + "'.\n"));
}

} // namespace
