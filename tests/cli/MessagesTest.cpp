// What the library says while it loads, as a user gets to see it.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

namespace {

using namespace OrvTest;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// Five corners on a line: no corner is an ear.
const char flatPentagons[] = "v 0 0 0\nv 1 0 0\nv 2 0 0\nv 3 0 0\nv 4 0 0\nv 0 1 0\n"
                             "f 1 2 6\n";

QByteArray modelOfPentagons(int count)
{
    QByteArray text = flatPentagons;
    for (int i = 0; i < count; ++i)
        text += "f 1 2 3 4 5\n";
    return text;
}

OrvRun infoOn(const QByteArray &contents, const QStringList &options = {})
{
    const TemporaryModel files;
    const QString model = files.write(QStringLiteral("m.obj"), contents);
    return runOrv(QStringList{QStringLiteral("info"), model} + options);
}

TEST(MessagesTest, AWarningIsPrintedOnStderr)
{
    const OrvRun run = infoOn(modelOfPentagons(1));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err.toStdString(),
                StartsWith("orv: warning: Unable to triangulate polygon.\norv: warning: '"));
    EXPECT_THAT(run.err.toStdString(), EndsWith("': The face in line 8 is not drawn: an outline "
                                                "that crosses itself, or has no area.\n"));
}

TEST(MessagesTest, TheSameWarningIsCounted)
{
    const OrvRun run = infoOn(modelOfPentagons(1234));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err.toStdString(),
                StartsWith("orv: warning: Unable to triangulate polygon. (1,234 times)\n"));
    EXPECT_THAT(
        run.err.toStdString(),
        EndsWith("': 1,234 faces, the first in line 8, are not drawn: an outline that crosses "
                 "itself, or has no area.\n"));
}

TEST(MessagesTest, DebugMessagesAreForTheVerbose)
{
    const QByteArray triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
    EXPECT_EQ(infoOn(triangle).err, "");
    const OrvRun run = infoOn(triangle, {QStringLiteral("--verbose")});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err.toStdString(), HasSubstr("orv: debug: "));
    EXPECT_THAT(run.err.toStdString(), HasSubstr("Vertices Map"));
}

} // namespace
