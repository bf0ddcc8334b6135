#include "Triangles/Ears/EarQueue.h"

#include "support/RandomRings.h"

#include <gtest/gtest.h>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

/// What the definition does: a loop that only a greater cosine impresses.
int sharpestByLoop(const std::vector<float> &cosines)
{
    int best = -1;
    for (std::size_t i = 0; i < cosines.size(); ++i) {
        if (cosines[i] == EarQueue::NoEar)
            continue;
        if (best < 0 || cosines[i] > cosines[static_cast<std::size_t>(best)])
            best = static_cast<int>(i);
    }
    return best;
}

EarQueue queueOf(const std::vector<float> &cosines)
{
    EarQueue queue;
    queue.reset(static_cast<int>(cosines.size()));
    for (std::size_t i = 0; i < cosines.size(); ++i)
        queue.load(static_cast<int>(i), cosines[i]);
    queue.build();
    return queue;
}

/// The greatest float below -1: rounding takes cosines of straight corners there.
constexpr float BeyondStraight = -1.00000012f;

TEST(EarQueue, GivesTheFirstOfTheSharpestEars)
{
    constexpr float None = EarQueue::NoEar;
    const struct
    {
        const char *name;
        std::vector<float> cosines;
        int sharpest;
    } cases[] = {
        {"no ear", {None, None, None}, -1},
        {"one position", {0.5f}, 0},
        {"the greatest", {0.1f, 0.3f, 0.2f}, 1},
        {"a tie within a pair", {0.1f, 0.1f, -0.2f}, 0},
        {"a tie across pairs", {0.0f, 0.5f, 0.5f, 0.5f}, 1},
        {"a tie of the ends", {0.5f, 0.1f, 0.1f, 0.1f, 0.5f}, 0},
        {"zeros of either sign are a tie", {-0.5f, -0.0f, 0.0f, -0.5f}, 1},
        {"zeros of either sign, turned", {-0.5f, 0.0f, -0.0f, -0.5f}, 1},
        {"a cosine below -1", {None, None, BeyondStraight, None, BeyondStraight}, 2},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(sharpestByLoop(row.cosines), row.sharpest);
        EXPECT_EQ(queueOf(row.cosines).sharpest(), row.sharpest);
    }
}

TEST(EarQueue, AgreesWithTheLoopWhileEarsComeAndGo)
{
    constexpr std::uint32_t Seed = 7;
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    // Few values, so that nearly all are ties.
    const float values[] = {
        EarQueue::NoEar, EarQueue::NoEar, BeyondStraight, -0.5f, -0.0f, 0.0f, 0.75f, 1.0f};
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        std::vector<float> cosines(static_cast<std::size_t>(dice.between(1, 70)));
        for (float &cosine : cosines)
            cosine = values[dice.below(8)];
        EarQueue queue = queueOf(cosines);
        for (int change = 0; change < 200; ++change) {
            ASSERT_EQ(queue.sharpest(), sharpestByLoop(cosines));
            const int position = dice.below(static_cast<int>(cosines.size()));
            float &cosine = cosines[static_cast<std::size_t>(position)];
            cosine = values[dice.below(8)];
            if (cosine == EarQueue::NoEar)
                queue.remove(position);
            else
                queue.set(position, cosine);
        }
    }
}

TEST(EarQueue, ForgetsWhatWasThereBefore)
{
    EarQueue queue = queueOf({0.5f, 0.25f, 1.0f});
    queue.reset(2);
    EXPECT_EQ(queue.sharpest(), -1);
}

} // namespace
