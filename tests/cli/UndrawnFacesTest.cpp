// Why faces of a file are not drawn, and in which line the first of them is.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;

const char corners[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 2 0 0\nv 3 0 0\n";

class UndrawnFacesTest : public ::testing::Test
{
protected:
    OrvRun info(const QByteArray &text, const QStringList &options = {})
    {
        _model = _files.write(QStringLiteral("m.obj"), text);
        return runOrv(QStringList{QStringLiteral("info"), _model} + options);
    }

    /// Those of a file whose other faces are drawn.
    std::string warnings(const QByteArray &text)
    {
        const OrvRun run = info(text);
        EXPECT_EQ(run.status, 0);
        return run.err.toStdString();
    }

    std::string warning(const char *text) const
    {
        return "orv: warning: '" + _model.toStdString() + "': " + text + "\n";
    }

    TemporaryModel _files;
    QString _model;
};

TEST_F(UndrawnFacesTest, AnUndefinedMaterialIsNamedWithItsLine)
{
    const QByteArray text = QByteArray(corners) +
                            "f 1 2 3\n\n# comment\nusemtl wood\nf 1 2 3\n"
                            "f 1 2\nf 1 x 3\nf 3 2 1\nusemtl stone\nf 1 2 4\n";
    const std::string told = warnings(text);
    EXPECT_EQ(told, warning("3 faces, the first in line 10, are not drawn: no library defines the "
                            "material 'wood'.") +
                        warning("The face in line 15 is not drawn: no library defines the material "
                                "'stone'."));
}

TEST_F(UndrawnFacesTest, SoIsAFaceOfTooFewCorners)
{
    const std::string told = warnings(QByteArray(corners) + "f 1 2 3\nf 1 2\nf\n");
    EXPECT_EQ(
        told,
        "orv: warning: Cannot triangulate a polygon with fewer than 3 vertices (2 times)\n" +
            warning("2 faces, the first in line 7, are not drawn: a face needs three corners."));
}

TEST_F(UndrawnFacesTest, TheLineIsRightFarBehind)
{
    QByteArray text = corners;
    for (int i = 0; i < 50000; ++i)
        text += "f 1 2 3\nf 1 x 3\nf -1 -2 -3\n";
    text += "usemtl wood\r\nf 1 2 3\r\n";
    // 5 vertices, 150,000 lines of faces of which a third cannot be read, and the material.
    const std::string told = warnings(text);
    EXPECT_EQ(told, warning("The face in line 150007 is not drawn: no library defines "
                            "the material 'wood'."));
}

TEST_F(UndrawnFacesTest, ProgramsGetThemInJSON)
{
    const OrvRun run = info(QByteArray(corners) + "f 1 2 3\nusemtl wood\nf 1 2 3\nf 1 2 4\n",
                            {QStringLiteral("--json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(valueAt(run.json(), "file.facesNotDrawn").toInt(), 2);
    const QJsonObject entry{{QStringLiteral("reason"), QStringLiteral("material-undefined")},
                            {QStringLiteral("subject"), QStringLiteral("wood")},
                            {QStringLiteral("line"), 8},
                            {QStringLiteral("count"), 2}};
    EXPECT_EQ(valueAt(run.json(), "file.notDrawn").toArray(), QJsonArray{entry});
}

TEST_F(UndrawnFacesTest, AFileOfWhichNothingIsDrawnIsAtFault)
{
    const QByteArray text = QByteArray(corners) + "usemtl wood\nf 1 2 3\n";
    const OrvRun run = info(text);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.toStdString(),
              warning("The face in line 7 is not drawn: no library defines the material 'wood'.") +
                  "orv: None of the faces of '" + _model.toStdString() + "' is drawn.\n");
    EXPECT_THAT(run.out.toStdString(), HasSubstr("  1 not drawn\n"));

    const QString picture = _files.path(QStringLiteral("out.png"));
    const OrvRun drawn = runOrv({QStringLiteral("render"), _model, QStringLiteral("-o"), picture});
    EXPECT_EQ(drawn.status, 1);
    EXPECT_EQ(drawn.err, run.err);
    EXPECT_FALSE(QFile::exists(picture));
}

TEST_F(UndrawnFacesTest, ValuesBehindTheLastFaceAreAReason)
{
    const OrvRun run = info(QByteArray(corners) + "f 1 2 3\nvn 0 0 1\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.toStdString(),
              warning("The face in line 6 is not drawn: the file has no positions, or normals or "
                      "texture coordinates that begin behind the last face.") +
                  "orv: None of the faces of '" + _model.toStdString() + "' is drawn.\n");
}

TEST_F(UndrawnFacesTest, WhatIsNoOBJFileIsSaid)
{
    for (const QByteArray &text :
         {QByteArray("solid cube\nfacet normal 0 0 1\n"), QByteArray("\x89PNG\r\n\x1a\n\0\1\2", 11),
          QByteArray("{ \"asset\": 1 }")}) {
        const OrvRun run = info(text);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err.toStdString(), "orv: '" + _model.toStdString() +
                                             "' is no OBJ file: none of its lines begins with a "
                                             "keyword of that format.\n");
    }
    for (const QByteArray &text : {QByteArray(), QByteArray("# nothing yet\n\n"),
                                   QByteArray("\xef\xbb\xbfo name\n"), QByteArray("vp 1 2\n")}) {
        const OrvRun run = info(text);
        EXPECT_EQ(run.status, 0) << text.constData();
        EXPECT_EQ(run.err, "");
    }
}

} // namespace
