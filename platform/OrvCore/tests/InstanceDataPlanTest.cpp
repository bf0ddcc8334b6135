#include <OrvCore/InstanceDataPlan.h>

#include "support/MessageCapture.h"
#include "support/QtPrinting.h"

#include <gmock/gmock.h>

#include <set>
#include <vector>

using namespace Halvard::Orv;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Plan = InstanceDataPlan;

Plan planOf(const std::vector<Plan::DataType> &types)
{
    Plan plan(QStringLiteral("Plan"));
    int number = 0;
    for (const Plan::DataType type : types)
        plan.addMember(type, QStringLiteral("m%1").arg(number++));
    return plan;
}

std::vector<int> offsetsOf(const Plan &plan)
{
    std::vector<int> offsets;
    for (const Plan::Member &member : plan.members())
        offsets.push_back(member.offset);
    return offsets;
}

struct TypeCase
{
    const char *name;
    Plan::DataType type;
    int number;
    int size;
    int alignment;
};

// std430: a scalar of N bytes is aligned to N, two of them to 2N, three and four to 4N; a matrix is
// an array of its columns. N is 4, and 8 for doubles.
const TypeCase typeCases[] = {
    {"Texture", Plan::Texture, 0, 4, 4}, {"Int", Plan::Int, 1, 4, 4},
    {"IVec2", Plan::IVec2, 2, 8, 8},     {"IVec3", Plan::IVec3, 3, 12, 16},
    {"IVec4", Plan::IVec4, 4, 16, 16},   {"UInt", Plan::UInt, 5, 4, 4},
    {"UVec2", Plan::UVec2, 6, 8, 8},     {"UVec3", Plan::UVec3, 7, 12, 16},
    {"UVec4", Plan::UVec4, 8, 16, 16},   {"Double", Plan::Double, 9, 8, 8},
    {"DVec2", Plan::DVec2, 10, 16, 16},  {"DVec3", Plan::DVec3, 11, 24, 32},
    {"DVec4", Plan::DVec4, 12, 32, 32},  {"Float", Plan::Float, 13, 4, 4},
    {"Vec2", Plan::Vec2, 14, 8, 8},      {"Vec3", Plan::Vec3, 15, 12, 16},
    {"Vec4", Plan::Vec4, 16, 16, 16},    {"Mat4", Plan::Mat4, 17, 64, 16},
};

TEST(InstanceDataPlan, GivesEveryTypeItsNumberSizeAndAlignment)
{
    std::set<int> numbers;
    for (const TypeCase &expected : typeCases) {
        SCOPED_TRACE(expected.name);
        EXPECT_EQ(static_cast<int>(expected.type), expected.number);
        EXPECT_EQ(Plan::sizeOf(expected.type), expected.size);
        EXPECT_EQ(Plan::alignmentOf(expected.type), expected.alignment);
        // Behind one float, a member starts at its own alignment, and an array of such structs
        // repeats at a multiple of it.
        const Plan plan = planOf({Plan::Float, expected.type});
        EXPECT_THAT(offsetsOf(plan), ElementsAre(0, expected.alignment));
        EXPECT_EQ(plan.stride() % expected.alignment, 0);
        EXPECT_GE(plan.stride(), expected.alignment + expected.size);
        EXPECT_LT(plan.stride(), 2 * expected.alignment + expected.size);
        numbers.insert(expected.number);
    }
    EXPECT_EQ(numbers.size(), 18u) << "a type has no row";
}

TEST(InstanceDataPlan, StartsWithoutMembers)
{
    const Plan plan(QStringLiteral("Lamp"));
    EXPECT_EQ(plan.name(), QStringLiteral("Lamp"));
    EXPECT_THAT(plan.members(), IsEmpty());
    EXPECT_EQ(plan.stride(), 0);
}

TEST(InstanceDataPlan, KeepsMembersInTheOrderAdded)
{
    Plan plan(QStringLiteral("Plan"));
    plan.addMember(Plan::Vec3, QStringLiteral("z"));
    plan.addMember(Plan::Texture, QStringLiteral("a"));
    ASSERT_EQ(plan.members().size(), 2);
    EXPECT_EQ(plan.members()[0].name, QStringLiteral("z"));
    EXPECT_EQ(plan.members()[0].type, Plan::Vec3);
    EXPECT_EQ(plan.members()[1].name, QStringLiteral("a"));
    EXPECT_EQ(plan.members()[1].type, Plan::Texture);
}

TEST(InstanceDataPlan, PutsAScalarIntoTheGapBehindThreeFloats)
{
    // vec3 at 0..11, float at 12..15: size 16, a multiple of the vec3's alignment already.
    const Plan plan = planOf({Plan::Vec3, Plan::Float});
    EXPECT_THAT(offsetsOf(plan), ElementsAre(0, 12));
    EXPECT_EQ(plan.stride(), 16);
}

TEST(InstanceDataPlan, AlignsThreeFloatsLikeFour)
{
    // float at 0, vec3 at 16 (not 4)..27, float at 28..31.
    const Plan plan = planOf({Plan::Float, Plan::Vec3, Plan::Float});
    EXPECT_THAT(offsetsOf(plan), ElementsAre(0, 16, 28));
    EXPECT_EQ(plan.stride(), 32);
}

TEST(InstanceDataPlan, RoundsTheStrideToTheStrictestMember)
{
    EXPECT_EQ(planOf({Plan::Float, Plan::Float, Plan::Float}).stride(), 12); // alignment 4
    EXPECT_EQ(planOf({Plan::Vec2, Plan::Float}).stride(), 16);               // 12 up to 8s
    EXPECT_EQ(planOf({Plan::Vec3}).stride(), 16);                            // 12 up to 16s
    EXPECT_EQ(planOf({Plan::DVec3, Plan::Float}).stride(), 32);              // 28 up to 32s
    EXPECT_EQ(planOf({Plan::Mat4, Plan::Float}).stride(), 80);               // 68 up to 16s
}

TEST(InstanceDataPlan, LaysOutAMaterial)
{
    // Ns 0, d 4; vec3 from the next multiple of 16: Kd 16, Ks 32, Ke 48..59; then four unsigned
    // integers without gaps: 60, 64, 68, 72..75; up to a multiple of 16: 80.
    const Plan plan = planOf({Plan::Float, Plan::Float, Plan::Vec3, Plan::Vec3, Plan::Vec3,
                              Plan::Texture, Plan::Texture, Plan::Texture, Plan::Texture});
    EXPECT_THAT(offsetsOf(plan), ElementsAre(0, 4, 16, 32, 48, 60, 64, 68, 72));
    EXPECT_EQ(plan.stride(), 80);
}

TEST(InstanceDataPlan, LaysOutMatricesWithoutGaps)
{
    const Plan plan = planOf({Plan::Mat4, Plan::Mat4});
    EXPECT_THAT(offsetsOf(plan), ElementsAre(0, 64));
    EXPECT_EQ(plan.stride(), 128);
}

TEST(InstanceDataPlan, RefusesNumbersThatAreNoType)
{
    const OrvTest::MessageCapture log;
    Plan plan(QStringLiteral("Lamp"));
    plan.addMember(static_cast<Plan::DataType>(18), QStringLiteral("m"));
    EXPECT_THAT(plan.members(), IsEmpty());
    EXPECT_EQ(plan.stride(), 0);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("InstanceDataPlan \"Lamp\": member \"m\" has the unknown type 18"));
    EXPECT_EQ(Plan::sizeOf(static_cast<Plan::DataType>(18)), 0);
    EXPECT_EQ(Plan::alignmentOf(static_cast<Plan::DataType>(18)), 1);
}

} // namespace
