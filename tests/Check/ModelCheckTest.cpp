#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include "OBJCheck.h"
#include <OrvCheck/ModelCheck.h>

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtGui/QImage>

#include <cfenv>

namespace {

using namespace Halvard::Orv;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A unit square, and a corner above it.
const QByteArray Square = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";

class ModelCheck : public ::testing::Test
{
protected:
    ModelFindings checked(const QByteArray &model)
    {
        const QString fileName = _files.write(QStringLiteral("m.obj"), model);
        ModelFindings findings;
        QString reason;
        EXPECT_EQ(checkModel(fileName, findings, reason), CheckStatus::Done)
            << reason.toStdString();
        return findings;
    }

    /// "FILE:LINE CODE SUBJECT count C faces F" for each, as far as it is not empty, 1 or 0.
    std::vector<std::string> told(const QByteArray &model)
    {
        std::vector<std::string> lines;
        for (const Finding &finding : checked(model).findings) {
            QString line = finding.file.mid(finding.file.lastIndexOf(QLatin1Char('/')) + 1) +
                           QStringLiteral(":%1 %2 %3")
                               .arg(finding.line)
                               .arg(severityName(finding.severity), finding.code);
            if (!finding.subject.isEmpty())
                line += QLatin1Char(' ') + finding.subject;
            if (finding.count != 1)
                line += QStringLiteral(" count %1").arg(finding.count);
            if (finding.faces != 0)
                line += QStringLiteral(" faces %1").arg(finding.faces);
            lines.push_back(line.toStdString());
        }
        return lines;
    }

    OrvTest::TemporaryModel _files;
};

TEST_F(ModelCheck, SaysNothingOfASoundModel)
{
    const ModelFindings findings = checked(Square + "f 1 2 3 4\nf 1 2 3\n");
    EXPECT_THAT(findings.findings, IsEmpty());
    EXPECT_EQ(findings.faces, 2);
    EXPECT_EQ(findings.facesDrawn, 2);
    EXPECT_EQ(findings.triangles, 2 + 1);
    EXPECT_EQ(findings.materials, QStringList(QStringLiteral("<default>")));
}

TEST_F(ModelCheck, CountsEachThingOnceAtItsFirstLine)
{
    EXPECT_THAT(told(Square + "usemtl a\nf 1 2 3\nf 2 3 4\nusemtl b\nf 1 2 3\nusemtl a\nf 1 2 3\n"),
                ElementsAre("m.obj:5 error material-undefined a count 2 faces 3",
                            "m.obj:8 error material-undefined b faces 1"));
}

TEST_F(ModelCheck, SaysNothingOfAnUndefinedMaterialWithoutFaces)
{
    EXPECT_THAT(told(Square + "usemtl a\nusemtl <default>\nf 1 2 3 4\n"), IsEmpty());
}

TEST_F(ModelCheck, BooksAFaceWithSeveralReasonsOnce)
{
    const ModelFindings findings = checked(Square + "usemtl a\nf 1 2\nf 1 2 3 4\n");
    ASSERT_EQ(findings.findings.size(), 2);
    EXPECT_EQ(findings.faces, 2);
    EXPECT_EQ(findings.findings.at(0).code, QLatin1String("material-undefined"));
    EXPECT_EQ(findings.findings.at(0).faces, 1);
    EXPECT_EQ(findings.findings.at(1).code, QLatin1String("face-too-few-corners"));
    EXPECT_EQ(findings.findings.at(1).faces, 1);
}

TEST_F(ModelCheck, BooksTheFacesOfAModelThatFailsWhereItFails)
{
    // Both libraries are missing; the first one ends the load. The material would be theirs.
    EXPECT_THAT(told("mtllib a.mtl\nmtllib b.mtl\n" + Square + "usemtl a\nf 1 2 3\nf 1 2\nf x\n"),
                ElementsAre("m.obj:1 error library-missing a.mtl faces 1",
                            "m.obj:2 error library-missing b.mtl",
                            "m.obj:9 error face-too-few-corners faces 1",
                            "m.obj:10 error face-unreadable faces 1"));
}

TEST_F(ModelCheck, KnowsFacesThatReferToWhatFollows)
{
    const ModelFindings findings = checked("v 0 0 0\nf 1 2 3\nf 1 2 9\nv 1 0 0\nv 0 1 0\n");
    ASSERT_EQ(findings.findings.size(), 1);
    EXPECT_EQ(findings.findings.at(0).code, QLatin1String("index-selects-nothing"));
    EXPECT_EQ(findings.findings.at(0).line, 3);
    EXPECT_EQ(findings.facesDrawn, 2);
}

TEST_F(ModelCheck, CountsNegativeIndicesAtTheFace)
{
    EXPECT_THAT(told("v 0 0 0\nv 1 0 0\nv 0 1 0\nf -3 -2 -1\nf -4 -2 -1\n"),
                ElementsAre("m.obj:5 warning index-selects-nothing v"));
}

TEST_F(ModelCheck, FollowsIndicesThatShift)
{
    // The five corners of the first face take the indices of the second and third one, which
    // make a pentagon; those two have none left, and lie at the origin.
    const ModelFindings findings = checked("f 9 9 9 9 9\nv 0 0 0\nv 2 0 0\nv 3 2 0\nv 1 3 0\n"
                                           "v -1 2 0\nf 1 2 3\nf 4 5\n");
    EXPECT_EQ(findings.faces, 3);
    EXPECT_EQ(findings.facesDrawn, 2);
    EXPECT_EQ(findings.triangles, 3 + 1);
}

TEST_F(ModelCheck, SortsLibrariesBehindTheModelInTheOrderOfLoading)
{
    _files.write(QStringLiteral("z.mtl"), "newmtl z\nd 0\n");
    _files.write(QStringLiteral("a.mtl"), "Kd 1 1 1\nnewmtl a\nmap_Kd none.png\n");
    EXPECT_THAT(told("mtllib z.mtl\nmtllib a.mtl\n" + Square +
                     "usemtl z\nf 1 2 3 4\nusemtl a\nf 1 2 3 4\nl 1 2\n"),
                ElementsAre("m.obj:11 hint keyword-ignored l", "z.mtl:2 warning opacity-zero z",
                            "a.mtl:1 warning material-line-outside Kd",
                            "a.mtl:3 warning texture-missing none.png"));
}

TEST_F(ModelCheck, SaysNothingOfValuesBehindAMaterialWithoutAName)
{
    _files.write(QStringLiteral("a.mtl"), "newmtl\nKd 1 1 1\nnewmtl a\n");
    _files.write(QStringLiteral("b.mtl"), "Kd 1 1 1\n");
    EXPECT_THAT(told("mtllib a.mtl\nmtllib b.mtl\n" + Square + "usemtl a\nf 1 2 3 4\n"),
                ElementsAre("a.mtl:1 warning material-empty-name",
                            "b.mtl:1 warning material-line-outside Kd"));
}

TEST_F(ModelCheck, TellsContinuedLinesOfLibrariesOnce)
{
    _files.write(QStringLiteral("a.mtl"), "newmtl a\nKd 1 \\\n0 \\\n1\n2 3\nKs 1 \\\nTf 1\nd 1\n");
    EXPECT_THAT(told("mtllib a.mtl\n" + Square + "usemtl a\nf 1 2 3 4\n"),
                ElementsAre("a.mtl:2 warning line-continued Kd", "a.mtl:5 hint keyword-ignored 2",
                            "a.mtl:6 warning line-continued Ks"));
}

TEST_F(ModelCheck, OnlyHintsAtWhatNoFaceUses)
{
    _files.write(QStringLiteral("a.mtl"), "newmtl a\nd 0\nnewmtl b\nd 0\n");
    EXPECT_THAT(told("mtllib a.mtl\n" + Square + "usemtl a\nf 1 2 3 4\n"),
                ElementsAre("a.mtl:2 warning opacity-zero a", "a.mtl:4 hint opacity-zero b"));
}

TEST_F(ModelCheck, ReadsALibraryOnce)
{
    _files.write(QStringLiteral("a.mtl"), "newmtl a\nd 0\n");
    EXPECT_THAT(
        told("mtllib a.mtl\nmtllib ./a.mtl\nmtllib a.mtl\n" + Square + "usemtl a\nf 1 2 3 4\n"),
        ElementsAre("a.mtl:2 warning opacity-zero a"));
}

TEST_F(ModelCheck, ShowsWhereTheFirstFaceIs)
{
    const ModelFindings findings =
        checked("v 0 0 0\nv 1 0 0\nv 2 0 0\nv 5 5 5\nf 4 4 4\nf 1 2 3\n");
    ASSERT_EQ(findings.findings.size(), 2);
    EXPECT_EQ(findings.findings.at(1).code, QLatin1String("face-without-area"));
    EXPECT_EQ(findings.findings.at(1).corners,
              (QVector<QVector3D>{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
}

TEST_F(ModelCheck, ShowsTheFirstFaceThatWantsAMaterial)
{
    const ModelFindings findings =
        checked("v 0 0 0\nv 1 0 0\nv 2 1 0\nv 5 5 5\nusemtl none\nf 1 2 3\nf 2 3 4\n");
    ASSERT_EQ(findings.findings.size(), 1);
    EXPECT_EQ(findings.findings.at(0).code, QLatin1String("material-undefined"));
    EXPECT_EQ(findings.findings.at(0).corners,
              (QVector<QVector3D>{{0, 0, 0}, {1, 0, 0}, {2, 1, 0}}));
}

TEST_F(ModelCheck, ShowsNoMoreThanSixtyFourCorners)
{
    QByteArray model = "v 0 0 0\nf";
    for (int i = 0; i < 100; ++i)
        model += " 1";
    const ModelFindings findings = checked(model + "\n");
    ASSERT_EQ(findings.findings.size(), 1);
    EXPECT_EQ(findings.findings.at(0).code, QLatin1String("face-without-area"));
    EXPECT_EQ(findings.findings.at(0).faces, 1);
    EXPECT_EQ(findings.findings.at(0).corners.size(), 64);
}

TEST_F(ModelCheck, CutsLongNamesInMessagesOnly)
{
    const QByteArray name(300, 'n');
    const ModelFindings findings = checked(Square + "usemtl " + name + "\nf 1 2 3 4\n");
    ASSERT_EQ(findings.findings.size(), 1);
    EXPECT_EQ(findings.findings.at(0).subject.size(), 300);
    EXPECT_EQ(findings.findings.at(0).message,
              QStringLiteral("No library defines the material \"%1...\".")
                  .arg(QString(200, QLatin1Char('n'))));
}

TEST_F(ModelCheck, TellsFewKeywordsOfManyByName)
{
    QByteArray model = Square + "f 1 2 3 4\n";
    for (int i = 0; i < 50; ++i)
        model += "word" + QByteArray::number(i) + "\n";
    const ModelFindings findings = checked(model);
    ASSERT_EQ(findings.findings.size(), 20 + 1);
    EXPECT_EQ(findings.findings.last().subject, QString());
    EXPECT_EQ(findings.findings.last().count, 50 - 20);
}

TEST_F(ModelCheck, WarnsOfNamesThatAreCutAlike)
{
    _files.write(QStringLiteral("a.mtl"), "newmtl red wood\nnewmtl oak\tdark\n");
    EXPECT_THAT(told("mtllib a.mtl\n" + Square +
                     "usemtl red wood\nf 1 2 3 4\nusemtl oak  dark # not light\nf 1 2 3 4\n"),
                ElementsAre("m.obj:6 hint name-cut-at-blank red wood",
                            "m.obj:8 hint name-cut-at-blank oak dark",
                            "a.mtl:1 hint name-cut-at-blank red wood",
                            "a.mtl:2 hint name-cut-at-blank oak dark"));
    EXPECT_THAT(told("mtllib a.mtl\n" + Square +
                     "usemtl red wood\nf 1 2 3 4\nusemtl red steel\nf 1 2 3 4\n"),
                ElementsAre("m.obj:6 warning name-cut-at-blank red wood",
                            "m.obj:8 warning name-cut-at-blank red steel",
                            "a.mtl:1 warning name-cut-at-blank red wood",
                            "a.mtl:2 hint name-cut-at-blank oak dark"));
}

TEST_F(ModelCheck, TellsManySubjectsTogether)
{
    QByteArray model = Square;
    for (int i = 0; i < 1500; ++i)
        model += "usemtl m" + QByteArray::number(i) + "\nf 1 2 3\nf 1 2 3 4\n";
    const ModelFindings findings = checked(model);
    ASSERT_EQ(findings.findings.size(), 1000 + 1);
    EXPECT_EQ(findings.findings.at(999).subject, QStringLiteral("m999"));
    EXPECT_EQ(findings.findings.at(1000).subject, QStringLiteral("further ones"));
    EXPECT_EQ(findings.findings.at(1000).line, 4 + 3 * 1000 + 1);
    EXPECT_EQ(findings.findings.at(1000).count, 500);
    EXPECT_EQ(findings.findings.at(1000).faces, 2 * 500);
    EXPECT_EQ(findings.findings.at(1000).message,
              QStringLiteral("500 further occurrences of this kind, beyond those that are told one "
                             "by one."));
}

TEST_F(ModelCheck, FindsTexturesOfBackslashesAndOtherCase)
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::red);
    _files.write(QStringLiteral("tex/Wood.png"), {});
    ASSERT_TRUE(image.save(_files.path(QStringLiteral("tex/Wood.png"))));
    ASSERT_TRUE(image.save(_files.path(QStringLiteral("my wood.png"))));
    _files.write(QStringLiteral("a.mtl"), "newmtl a\nmap_Kd tex\\Wood.png\nmap_Ks TEX/wood.PNG\n"
                                          "map_Ka C:\\art\\tex\\none.png\nmap_Ns my wood.png\n");
    EXPECT_THAT(told("mtllib a.mtl\n" + Square + "usemtl a\nf 1 2 3 4\n"),
                ElementsAre("a.mtl:2 warning texture-path-backslash tex\\Wood.png",
                            "a.mtl:3 warning texture-path-case TEX/wood.PNG",
                            "a.mtl:4 warning texture-missing C:\\art\\tex\\none.png",
                            "a.mtl:5 warning name-cut-at-blank my wood.png"));
}

TEST_F(ModelCheck, SaysWhatToRenameWhereATextureHasABlank)
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (const char *name : {"tex/my wood.png", "bark\tof  oak.png"}) {
        _files.write(QLatin1String(name), {});
        ASSERT_TRUE(image.save(_files.path(QLatin1String(name))));
    }
    _files.write(QStringLiteral("a.mtl"), "newmtl a\nmap_Kd tex/my wood.png\n"
                                          "map_Ks bark\tof  oak.png\nmap_Ka tex\\my wood.png\n");
    const QVector<Finding> findings =
        checked("mtllib a.mtl\n" + Square + "vt 0 0\nusemtl a\nf 1/1 2/1 3/1 4/1\n").findings;
    ASSERT_EQ(findings.size(), 3);
    const Finding &path = findings.at(0);
    EXPECT_EQ(path.message,
              QStringLiteral("The name of the texture \"tex/my wood.png\" ends at its first blank: "
                             "rename the image to \"tex/my_wood.png\", and write that here."));
    EXPECT_EQ(path.consequence,
              QStringLiteral("It reads \"tex/my\". The material is drawn without the texture."));
    EXPECT_EQ(path.remedy, QStringLiteral("Rename the image to \"tex/my_wood.png\", and write that "
                                          "name on the line."));
    EXPECT_FALSE(path.fixable);
    EXPECT_EQ(findings.at(1).remedy,
              QStringLiteral("Rename the image to \"bark_of__oak.png\", and write that name on the "
                             "line."));
    const Finding &backslash = findings.at(2);
    EXPECT_EQ(backslash.code, QStringLiteral("texture-path-backslash"));
    EXPECT_EQ(backslash.remedy,
              QStringLiteral("Rename the image to \"tex/my_wood.png\", and write that."));
    EXPECT_FALSE(backslash.fixable);
}

TEST_F(ModelCheck, HintsAtGreyTextures)
{
    QImage image(1, 1, QImage::Format_Grayscale8);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(_files.path(QStringLiteral("grey.png"))));
    _files.write(QStringLiteral("a.mtl"), "newmtl a\nmap_Kd grey.png\n");
    EXPECT_THAT(told("mtllib a.mtl\n" + Square + "usemtl a\nf 1 2 3 4\n"),
                ElementsAre("a.mtl:2 hint texture-undecodable grey.png"));
}

/// A host program that rounds otherwise gets the same answers, and its state back.
TEST_F(ModelCheck, ComputesInTheDefaultFloatingPointState)
{
    const QByteArray model = "v 0.7 0.3 0\nv 0.2 0.3 0\nv 0.4 0.3000001 0\nf 1 2 3\n"
                             "v 100000 100000 100000\nv 100001 100000 100000\n"
                             "v 100000 100001 100000\nf 4 5 6\n";
    const std::vector<std::string> expected = told(model);
    EXPECT_THAT(expected,
                ElementsAre("m.obj:4 hint face-without-area", "m.obj:8 warning face-imprecise"));
    ASSERT_EQ(std::fesetround(FE_UPWARD), 0);
    const ModelFindings findings = checked(model);
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
    std::fesetround(FE_TONEAREST);
    ASSERT_EQ(findings.findings.size(), 2);
    EXPECT_EQ(findings.findings.at(0).corners.at(0),
              QVector3D(0.7f, 0.3f, 0.0f)); // 0.7f lies below 0.7
    EXPECT_EQ(findings.findings.at(1).code, QLatin1String("face-imprecise"));
}

TEST_F(ModelCheck, SaysWhyAFileCannotBeRead)
{
    const OrvTest::MessageCapture capture; // of the library, on files of other kinds
    ModelFindings findings;
    QString reason;
    EXPECT_EQ(checkModel(_files.path(QStringLiteral("none.obj")), findings, reason),
              CheckStatus::Unreadable);
    EXPECT_EQ(reason, QStringLiteral("no such file"));
    EXPECT_EQ(checkModel(_files.directory(), findings, reason), CheckStatus::Unreadable);
    EXPECT_EQ(reason, QStringLiteral("is a directory"));
    EXPECT_EQ(checkModel(QStringLiteral("/dev/zero"), findings, reason), CheckStatus::Unreadable);
    EXPECT_EQ(reason, QStringLiteral("not a regular file"));
    EXPECT_EQ(checkModel(QString(), findings, reason), CheckStatus::Unreadable);
    EXPECT_EQ(reason, QStringLiteral("no such file"));
}

TEST_F(ModelCheck, TellsHowFarItIsAndStops)
{
    QByteArray model;
    while (model.size() < 5000000)
        model += "# a comment to fill the file with\n";
    const QString fileName = _files.write(QStringLiteral("m.obj"), model);
    std::vector<double> fractions;
    CheckOptions options;
    options.progress = [&fractions](double fraction) {
        fractions.push_back(fraction);
        return true;
    };
    ModelFindings findings;
    QString reason;
    EXPECT_EQ(checkModel(fileName, findings, reason, options), CheckStatus::Done);
    EXPECT_GE(fractions.size(), 4u);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_GE(fractions.front(), 0.0);
    EXPECT_LE(fractions.back(), 1.0);

    options.progress = [](double fraction) { return fraction < 0.5; };
    EXPECT_EQ(checkModel(fileName, findings, reason, options), CheckStatus::Stopped);
}

TEST(ModelCheckLimits, ALineTooLongFailsTheModel)
{
    Checking::TextLines::Limits limits;
    limits.chunkBytes = 16;
    limits.lineBytes = 64;
    QBuffer device;
    device.setData("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n#" + QByteArray(200, '#') + "\n");
    ASSERT_TRUE(device.open(QIODevice::ReadOnly));
    Checking::OBJCheck check(QStringLiteral("m.obj"), {});
    Checking::OBJLines lines(device, limits);
    while (lines.next())
        EXPECT_TRUE(check.takeLine(lines));
    ASSERT_TRUE(lines.text().lineTooLong());
    check.takeTooLongLine(lines.line().number + 1);
    check.finish(lines);
    const ModelFindings findings = check.result();
    ASSERT_EQ(findings.findings.size(), 1);
    EXPECT_EQ(findings.findings.at(0).code, QLatin1String("limit-exceeded"));
    EXPECT_EQ(findings.findings.at(0).line, 5);
    EXPECT_EQ(findings.findings.at(0).faces, 1);
    EXPECT_EQ(findings.facesDrawn, 0);
}

/// Nothing but hints on models that are meant to be sound.
TEST(ModelCheckOfModels, OnlyHints)
{
    int models = 0;
    const auto expectHints = [&models](const QString &fileName) {
        ModelFindings findings;
        QString reason;
        ASSERT_EQ(checkModel(fileName, findings, reason), CheckStatus::Done);
        EXPECT_FALSE(findings.has(FindingSeverity::Warning)) << fileName.toStdString();
        EXPECT_EQ(findings.facesDrawn, findings.faces) << fileName.toStdString();
        ++models;
    };
    QDirIterator samples(QStringLiteral(ORV_SAMPLES_DIR), {QStringLiteral("*.obj")}, QDir::Files);
    while (samples.hasNext())
        expectHints(samples.next());
    EXPECT_GT(models, 0);
    for (const char *name : {"teapot.obj", "fandisk.obj"}) {
        const QString fileName = QStringLiteral(ORV_SHARED_MODELS_DIR "/") + QLatin1String(name);
        if (QFile::exists(fileName))
            expectHints(fileName);
    }
}

TEST(PrintableText, EscapesWhatChangesTheRest)
{
    EXPECT_EQ(printableText(QStringLiteral("caf\u00e9 \\ \"x\"")),
              QStringLiteral("caf\u00e9 \\ \"x\""));
    EXPECT_EQ(printableText(QString(QChar(0x1b)) + QStringLiteral("[31m\n\t")),
              QStringLiteral("\\x1b[31m\\x0a\\x09"));
    EXPECT_EQ(printableText(QString(QChar(0x7f)) + QChar(0x9b)), QStringLiteral("\\x7f\\x9b"));
    EXPECT_EQ(printableText(QString(QChar(0x202e)) + QChar(0x2028) + QChar(0x2066)),
              QStringLiteral("\\u{202e}\\u{2028}\\u{2066}"));
}

TEST(PrintableText, CutsBetweenCharacters)
{
    EXPECT_EQ(printableText(QStringLiteral("abcdef"), 6), QStringLiteral("abcdef"));
    EXPECT_EQ(printableText(QStringLiteral("abcdef"), 3), QStringLiteral("abc..."));
    const QString face = QString::fromUtf8("ab\U0001F600c");
    EXPECT_EQ(printableText(face, 3), QStringLiteral("ab..."));
    EXPECT_EQ(printableText(face, 4), QString::fromUtf8("ab\U0001F600..."));
}

} // namespace
