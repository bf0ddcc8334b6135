#include "cli/OrvProcess.h"
#include "support/JSONSchema.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QJsonArray>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const QString Check = QStringLiteral("check");
const QString JSON = QStringLiteral("--json");

class CheckCommandTest : public ::testing::Test
{
protected:
    QString write(const char *name, const QByteArray &contents)
    {
        return _files.write(QString::fromUtf8(name), contents);
    }

    TemporaryModel _files;
    const QByteArray _triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    const QString _sound = write("sound.obj", _triangle + "f 1 2 3\n");
    const QString _warned = write("warned.obj", _triangle + "f 1 2 4\nf 1 2 3\n");
    const QString _broken = write("broken.obj", _triangle + "usemtl a\nf 1 2 3\nl 1 2\n");
};

TEST_F(CheckCommandTest, SaysNothingOfASoundModel)
{
    const OrvRun run = runOrv({Check, _sound});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
}

TEST_F(CheckCommandTest, PrintsALineForEachFinding)
{
    const OrvRun run = runOrv({Check, _broken});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.toStdString(),
              (_broken +
               QStringLiteral(":4: error: No library defines the material \"a\". 1 face is not "
                              "drawn. [material-undefined]\n") +
               _broken +
               QStringLiteral(":6: hint: 1 line begins with \"l\", which is not read. "
                              "[keyword-ignored]\n"))
                  .toStdString());
    EXPECT_EQ(run.err, "");
}

TEST_F(CheckCommandTest, FailsForErrorsAndForWarningsIfStrict)
{
    EXPECT_EQ(runOrv({Check, _warned}).status, 0);
    EXPECT_EQ(runOrv({Check, _warned, QStringLiteral("--strict")}).status, 1);
    EXPECT_EQ(runOrv({Check, _sound, QStringLiteral("--strict")}).status, 0);
    EXPECT_EQ(runOrv({Check, _sound, _broken}).status, 1);
}

TEST_F(CheckCommandTest, GoesOnBehindAFileThatCannotBeRead)
{
    const QString missing = _files.path(QStringLiteral("none.obj"));
    const OrvRun run = runOrv({Check, missing, _broken});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(
        run.err.toStdString(),
        QStringLiteral("orv: '%1' cannot be checked: no such file.\n").arg(missing).toStdString());
    EXPECT_THAT(run.out.toStdString(), HasSubstr("[material-undefined]"));
}

TEST_F(CheckCommandTest, PrintsTheMostSevereOnly)
{
    const OrvRun run = runOrv({Check, _broken, QStringLiteral("--max"), QStringLiteral("1")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.toStdString(),
              (_broken +
               QStringLiteral(":4: error: No library defines the material \"a\". 1 face is not "
                              "drawn. [material-undefined]\n") +
               _broken + QStringLiteral(": 1 more\n"))
                  .toStdString());
}

TEST_F(CheckCommandTest, RefusesAMaximumThatIsNone)
{
    for (const char *most : {"0", "-1", "many"}) {
        const OrvRun run =
            runOrv({Check, _sound, QStringLiteral("--max=%1").arg(QLatin1String(most))});
        EXPECT_EQ(run.status, 2) << most;
        EXPECT_EQ(run.err.toStdString(),
                  QStringLiteral("orv: '--max' takes a number of at least 1, not '%1'.\n"
                                 "Usage: orv check MODEL... [options]\n"
                                 "Try 'orv check --help'.\n")
                      .arg(QLatin1String(most))
                      .toStdString());
    }
}

TEST_F(CheckCommandTest, PrintsJSONThatTheSchemaDescribes)
{
    write("a.mtl", "newmtl a\nKd x\nmap_Kd none.png\n");
    const QString odd =
        write("odd.obj", "mtllib a.mtl\n" + _triangle +
                             "v nan inf 1\nusemtl a\nf 1 2 3 4\nf 1 2\nf x\nvn 0 0 0\n");
    const OrvRun run = runOrv({Check, _sound, odd, _broken, JSON});
    EXPECT_EQ(run.status, 1);
    const QJsonObject document = run.json();
    const JSONSchema schema(QStringLiteral(ORV_CHECK_SCHEMA));
    EXPECT_THAT(schema.violations(document), IsEmpty());
    EXPECT_EQ(valueAt(document, "models.0.findings").toArray().size(), 0);
    EXPECT_EQ(valueAt(document, "models.0.facesDrawn").toInt(), 1);
    EXPECT_GE(valueAt(document, "models.1.findings").toArray().size(), 5);
    EXPECT_EQ(valueAt(document, "models.2.faces").toInt(), 1);
    EXPECT_EQ(valueAt(document, "models.2.facesDrawn").toInt(), 0);
    EXPECT_EQ(valueAt(document, "models.2.findings.0.code").toString(),
              QStringLiteral("material-undefined"));
    EXPECT_EQ(valueAt(document, "models.2.findings.0.line").toInt(), 4);
    EXPECT_EQ(valueAt(document, "models.2.findings.0.subject").toString(), QStringLiteral("a"));
    EXPECT_EQ(valueAt(document, "models.2.findings.0.faces").toInt(), 1);
}

/// The validation itself: a document that breaks the schema in many ways.
TEST_F(CheckCommandTest, TheSchemaRefusesOtherDocuments)
{
    const JSONSchema schema(QStringLiteral(ORV_CHECK_SCHEMA));
    const QJsonObject finding{{QStringLiteral("code"), QStringLiteral("Not A Code")},
                              {QStringLiteral("severity"), QStringLiteral("fatal")},
                              {QStringLiteral("line"), 0},
                              {QStringLiteral("corners"), QJsonArray{QJsonArray{1, 2}}}};
    const QJsonObject model{{QStringLiteral("file"), 7},
                            {QStringLiteral("faces"), 1.5},
                            {QStringLiteral("findings"), QJsonArray{finding}}};
    const QJsonObject document{{QStringLiteral("format"), 2},
                               {QStringLiteral("models"), QJsonArray{model}}};
    EXPECT_THAT(schema.violations(document),
                ::testing::UnorderedElementsAre(
                    "$.format breaks const", "$.models[0] breaks required facesDrawn",
                    "$.models[0] breaks required triangles", "$.models[0].file breaks type",
                    "$.models[0].faces breaks type", "$.models[0].findings[0].code breaks pattern",
                    "$.models[0].findings[0].severity breaks enum",
                    "$.models[0].findings[0].line breaks minimum",
                    "$.models[0].findings[0].corners[0] breaks minItems",
                    "$.models[0].findings[0] breaks required file",
                    "$.models[0].findings[0] breaks required count",
                    "$.models[0].findings[0] breaks required faces",
                    "$.models[0].findings[0] breaks required subject",
                    "$.models[0].findings[0] breaks required message",
                    "$.models[0].findings[0] breaks required consequence",
                    "$.models[0].findings[0] breaks required remedy",
                    "$.models[0].findings[0] breaks required fixable"));
}

TEST_F(CheckCommandTest, StaysWithinItsDirectory)
{
    write("out.mtl", "newmtl a\n");
    write("in/in.mtl", "newmtl a\nmap_Kd ../none.png\nmap_Ks gone.png\n");
    const QString inside = _files.path(QStringLiteral("in"));
    const QString within = QStringLiteral("--within=") + inside;
    const QString model = write("in/m.obj", "mtllib ../out.mtl\nmtllib in.mtl\nmtllib gone.mtl\n" +
                                                _triangle + "usemtl a\nf 1 2 3\n");
    const OrvRun run = runOrv({Check, model, within});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(
        run.out,
        "m.obj:1: error: The material library \"../out.mtl\" lies outside of what may be read. "
        "1 face is not drawn. [library-missing]\n"
        "m.obj:3: error: The material library \"gone.mtl\" cannot be opened. "
        "[library-missing]\n"
        "in.mtl:3: warning: There is no texture \"gone.png\". [texture-missing]\n");
    EXPECT_EQ(run.err, "");

    const OrvRun outside = runOrv({Check, _sound, within});
    EXPECT_EQ(outside.status, 2);
    EXPECT_EQ(outside.out, "");
    EXPECT_EQ(
        outside.err.toStdString(),
        QStringLiteral("orv: '%1' cannot be checked: lies outside the directory of --within.\n")
            .arg(_sound)
            .toStdString());
}

TEST_F(CheckCommandTest, LeavesNothingToATerminalButText)
{
    const QString model = write("m\x1b.obj", _triangle + "usemtl \x1b[31m\xc2\x9b\xe2\x80\xae"
                                                         "red\nf 1 2 3\n");
    for (const QStringList &options : {QStringList(), QStringList(JSON)}) {
        const OrvRun run = runOrv(QStringList{Check, model} + options);
        EXPECT_EQ(run.status, 1);
        for (const QChar character : QString::fromUtf8(run.out + run.err))
            EXPECT_TRUE(character == QLatin1Char('\n') ||
                        (character.isPrint() && character.category() != QChar::Other_Format))
                << std::hex << character.unicode();
    }
    EXPECT_THAT(runOrv({Check, model}).out.toStdString(),
                HasSubstr("material \"\\x1b[31m\\x9b\\u{202e}red\"."));
    EXPECT_EQ(
        valueAt(runOrv({Check, model, JSON}).json(), "models.0.findings.0.subject").toString(),
        QString::fromUtf8("\x1b[31m\xc2\x9b\xe2\x80\xae"
                          "red"));
}

} // namespace
