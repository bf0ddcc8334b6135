// examples/lint: its lines and its exit status.
#include "support/TemporaryModel.h"

#include "ExampleRun.h"

#include <gtest/gtest.h>

namespace {

using OrvTest::ExampleRun;
using OrvTest::runExample;
using OrvTest::samplePath;

const char corners[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";

class LintExampleTest : public ::testing::Test
{
protected:
    /// The path of a model of one triangle, behind `lines`.
    QString model(const QByteArray &lines)
    {
        return files.write(QStringLiteral("model.obj"), corners + lines + "f 1 2 3\n");
    }

    OrvTest::TemporaryModel files;
};

} // namespace

TEST_F(LintExampleTest, IsContentWithACleanModel)
{
    const QString cube = samplePath("textured_cube.obj");
    EXPECT_EQ(
        runExample({cube}),
        (ExampleRun{0, cube.toLocal8Bit() + ": 6 of 6 faces are drawn, as 12 triangles\n", ""}));
}

TEST_F(LintExampleTest, TellsWhereAnErrorIsAndWhatToDo)
{
    const QString path = model("usemtl tiles\n");
    const QByteArray name = path.toLocal8Bit();
    const QByteArray summary = name + ": 0 of 1 faces are drawn, as 0 triangles\n";
    const QByteArray finding =
        name + ":4: error: No library defines the material \"tiles\". [material-undefined]\n"
               "    1 face is not drawn.\n"
               "    Define the material, or select another.\n";
    EXPECT_EQ(runExample({path}), (ExampleRun{1, finding + summary, ""}));
    EXPECT_EQ(runExample({QStringLiteral("--accept"), QStringLiteral("material-undefined"), path}),
              (ExampleRun{0, summary, ""}));
    EXPECT_EQ(runExample({QStringLiteral("--accept"), QStringLiteral("texture-missing"), path}),
              (ExampleRun{1, finding + summary, ""}));
}

TEST_F(LintExampleTest, LetsHintsPass)
{
    const QString path = model("v 5 5 5\n");
    const QByteArray name = path.toLocal8Bit();
    EXPECT_EQ(runExample({path}),
              (ExampleRun{0,
                          name + ":4: hint: No face uses 1 position. [positions-unused]\n" + name +
                              ": 1 of 1 faces are drawn, as 1 triangles\n",
                          ""}));
}

TEST_F(LintExampleTest, GivesTheWorstResultOfSeveralModels)
{
    const QString clean = samplePath("textured_cube.obj");
    const QString faulty = model("usemtl tiles\n");
    const QString missing = files.path(QStringLiteral("missing.obj"));
    EXPECT_EQ(runExample({faulty, clean}).status, 1);
    EXPECT_EQ(runExample({clean, missing, faulty}).status, 2);
    EXPECT_EQ(runExample({missing}),
              (ExampleRun{2, missing.toLocal8Bit() + ": no such file\n", ""}));
}

TEST_F(LintExampleTest, LetsNoNameWriteOverTheTerminal)
{
    const ExampleRun run = runExample({model("usemtl red\x1b[31m\n")});
    EXPECT_EQ(run.status, 1) << run;
    EXPECT_FALSE(run.out.contains('\x1b'));
    EXPECT_TRUE(run.out.contains("\"red\\x1b[31m\"")) << run;
}

TEST_F(LintExampleTest, SaysHowItIsUsed)
{
    const ExampleRun usage{2, "Usage: lint [--accept CODE]... MODEL.obj...\n", ""};
    EXPECT_EQ(runExample({}), usage);
    EXPECT_EQ(runExample({QStringLiteral("--accept"), QStringLiteral("encoding")}), usage);
}
