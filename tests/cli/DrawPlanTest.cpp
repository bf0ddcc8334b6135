// Which commands are drawn by one call.
#include <render/DrawPlan.h>

#include <gmock/gmock.h>

namespace {

using namespace Halvard::Orv::Render;
using Halvard::Orv::Texture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Only told apart, never looked into.
Texture *const white = reinterpret_cast<Texture *>(8);
Texture *const brick = reinterpret_cast<Texture *>(16);

/// "bundle:first+count".
std::vector<std::string> described(const std::vector<DrawRun> &runs)
{
    std::vector<std::string> texts;
    for (const DrawRun &run : runs)
        texts.push_back(std::to_string(run.bundle) + ":" + std::to_string(run.firstCommand) + "+" +
                        std::to_string(run.commandCount));
    return texts;
}

TEST(DrawPlanTest, CommandsOfTheSameTexturesAreOneRun)
{
    const std::vector<PlannedCommand> commands = {
        {0, 0, true, white, white}, {0, 1, true, white, white}, {0, 2, true, brick, white},
        {0, 3, true, brick, white}, {0, 4, true, brick, brick}, {0, 5, true, white, white}};
    const DrawPlan plan = planDraws(commands, true);
    EXPECT_THAT(described(plan.opaque), ElementsAre("0:0+2", "0:2+2", "0:4+1", "0:5+1"));
    EXPECT_THAT(plan.blended, IsEmpty());
    EXPECT_EQ(plan.opaque[1].diffuseMap, brick);
    EXPECT_EQ(plan.opaque[1].specularMap, white);
}

TEST(DrawPlanTest, BlendedCommandsStandAloneAndBreakRuns)
{
    const std::vector<PlannedCommand> commands = {{0, 0, true, white, white},
                                                  {0, 1, false, white, white},
                                                  {0, 2, false, white, white},
                                                  {0, 3, true, white, white},
                                                  {0, 4, true, white, white}};
    const DrawPlan plan = planDraws(commands, true);
    EXPECT_THAT(described(plan.opaque), ElementsAre("0:0+1", "0:3+2"));
    EXPECT_THAT(described(plan.blended), ElementsAre("0:1+1", "0:2+1"));
}

TEST(DrawPlanTest, RunsStayWithinABundle)
{
    const std::vector<PlannedCommand> commands = {{0, 0, true, white, white},
                                                  {1, 0, true, white, white},
                                                  {1, 1, true, white, white},
                                                  {2, 2, true, white, white}};
    EXPECT_THAT(described(planDraws(commands, true).opaque),
                ElementsAre("0:0+1", "1:0+2", "2:2+1"));
}

TEST(DrawPlanTest, OneByOneWhereTheShaderCannotTellThemApart)
{
    const std::vector<PlannedCommand> commands = {{0, 0, true, white, white},
                                                  {0, 1, true, white, white}};
    EXPECT_THAT(described(planDraws(commands, false).opaque), ElementsAre("0:0+1", "0:1+1"));
}

TEST(DrawPlanTest, NothingIsPlannedForNothing)
{
    EXPECT_THAT(planDraws({}, true).opaque, IsEmpty());
}

} // namespace
