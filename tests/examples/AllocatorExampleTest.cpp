// examples/allocator: what it takes from its arena.
#include "ExampleRun.h"

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>

namespace {

using OrvTest::ExampleRun;
using OrvTest::runExample;

} // namespace

TEST(AllocatorExampleTest, PutsTheModelIntoTheArena)
{
    const ExampleRun run = runExample({QStringLiteral("16")});
    EXPECT_EQ(run.status, 0) << run;
    const auto match =
        QRegularExpression(QStringLiteral("^filled: 5 streams, (\\d+) bytes\n"
                                          "prepared: (\\d+) streams, (\\d+) of 16777216 bytes\n"
                                          "20000 vertices, 40000 triangles\n$"))
            .match(QString::fromLatin1(run.out));
    ASSERT_TRUE(match.hasMatch()) << run;
    // 200 by 100 quads: three floats a vertex, four corners, a count and a number a face.
    const int least = 20000 * (3 * 4 + 4 * 4 + 4 + 4);
    const int filled = match.captured(1).toInt();
    EXPECT_GE(filled, least);
    // A stream has at most twice the room that it needs, and left at most as much behind.
    EXPECT_LE(filled, 4 * least);
    // Positions, normals, and the indices of the triangles come in new streams.
    EXPECT_GT(match.captured(2).toInt(), 5);
    EXPECT_GE(match.captured(3).toInt() - filled, 20000 * (3 + 3) * 4 + 40000 * 3 * 4);
    EXPECT_EQ(run.err, "");
}

TEST(AllocatorExampleTest, SaysThatTheArenaIsTooSmall)
{
    EXPECT_EQ(runExample({QStringLiteral("1")}), (ExampleRun{1, "", "1 MiB are not enough.\n"}));
    // Filled with less than that, it is prepared with more.
    const ExampleRun run = runExample({QStringLiteral("3")});
    EXPECT_EQ(run.status, 1) << run;
    EXPECT_TRUE(run.out.startsWith("filled: 5 streams, ")) << run;
    EXPECT_EQ(run.err, "3 MiB are not enough.\n");
}

TEST(AllocatorExampleTest, SaysHowItIsUsed)
{
    const ExampleRun usage{2, "", "Usage: allocator [MEBIBYTES], from 1 to 4096\n"};
    EXPECT_EQ(runExample({QStringLiteral("much")}), usage);
    EXPECT_EQ(runExample({QStringLiteral("16"), QStringLiteral("16")}), usage);
}
