// What a file says must not reach a terminal as it is.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QJsonArray>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::Not;

const QString info = QStringLiteral("info");

/// Escape, bell, C1's control sequence introducer, a delete, an override to the left and an end of
/// line that editors know.
const char hostile[] = "a\x1b[31m\x07\xc2\x9b\x7f\xe2\x80\xae\xe2\x80\xa9z";
const char harmless[] = "a\\x1b[31m\\x07\\x9b\\x7f\\u{202e}\\u{2029}z";

TEST(PrintedTextTest, NamesOfMaterialsAreShownByNumbers)
{
    const TemporaryModel files;
    files.write(QStringLiteral("m.mtl"), QByteArray("newmtl ") +
                                             "a\x1b[31m\x07\xc2\x9b\x7f\xe2\x80\xaez" +
                                             "\nmap_Kd \x1b]0;title\x07.png\n");
    const QString model = files.write(
        QStringLiteral("m.obj"), QByteArray("mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl ") +
                                     "a\x1b[31m\x07\xc2\x9b\x7f\xe2\x80\xaez" + "\nf 1 2 3\n");
    const OrvRun text = runOrv({info, model});
    ASSERT_EQ(text.status, 0);
    EXPECT_THAT(text.out.toStdString(), HasSubstr("  a\\x1b[31m\\x07\\x9b\\x7f\\u{202e}z "));
    EXPECT_THAT(text.out.toStdString(), HasSubstr("/\\x1b]0;title\\x07.png  (missing)\n"));
    EXPECT_THAT(text.out.toStdString(), Not(HasSubstr("\x1b")));
    // Programs get the name as it is.
    const OrvRun json = runOrv({info, QStringLiteral("--json"), model});
    EXPECT_EQ(valueAt(json.json(), "materials.0.name").toString(),
              QString::fromUtf8("a\x1b[31m\x07\xc2\x9b\x7f\xe2\x80\xaez"));
}

TEST(PrintedTextTest, SoAreNamesInMessages)
{
    const TemporaryModel files;
    const QString missing = files.path(QString::fromUtf8(hostile));
    const OrvRun run = runOrv({info, missing});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err.toStdString(),
                HasSubstr("'" + files.directory().toStdString() + "/" + harmless + "'"));
    EXPECT_THAT(runOrv({QString::fromUtf8(hostile)}).err.toStdString(),
                HasSubstr(std::string("orv: Unknown subcommand '") + harmless + "'.\n"));
}

TEST(PrintedTextTest, ALineBreakInANameBreaksNoLine)
{
    const TemporaryModel files;
    const QString missing = files.path(QStringLiteral("a\norv: all is well"));
    EXPECT_THAT(runOrv({info, missing}).err.toStdString(), HasSubstr("a\\x0aorv: all is well'"));
}

TEST(PrintedTextTest, LongNamesAreCut)
{
    const TemporaryModel files;
    const QByteArray name = 'b' + QByteArray(3000, 'x') + 'e';
    const QString model = files.write(QStringLiteral("m.obj"), "mtllib " + name + "\nv 0 0 0\n");
    const OrvRun run = runOrv({info, model});
    EXPECT_EQ(run.status, 1);
    // A third of what is left beside the dots shows the end.
    EXPECT_THAT(run.err.toStdString(), HasSubstr("..." + std::string(64, 'x') + "e'"));
    const std::string start =
        "orv: Failed to load MTL file '" + files.directory().toStdString() + "/bxx";
    EXPECT_EQ(run.err.toStdString().substr(0, start.size()), start);
    EXPECT_LT(run.err.size(), 200 + 100);
}

TEST(PrintedTextTest, CharactersOfAllLanguagesStay)
{
    const TemporaryModel files;
    const QString name = QString::fromUtf8("\u00e9\u6a21\U0001f3e0.obj");
    EXPECT_THAT(runOrv({info, files.path(name)}).err.toStdString(),
                HasSubstr("/" + name.toStdString() + "'"));
}

} // namespace
