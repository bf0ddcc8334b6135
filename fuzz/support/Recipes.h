/// \file
/// Large rings from a few bytes of an input.
#pragma once

#include "Fuzzing.h"

#include "support/RingRecipes.h"

#include <cmath>

namespace OrvFuzz {

/// Ten to the power of something from `low` to `high`.
inline double takePower(Input &input, double low, double high)
{
    return std::pow(10.0, low + (high - low) * input.byte() / 255.0);
}

/// 0 for every other byte.
inline double takeNoise(Input &input)
{
    return input.flag() ? takePower(input, -9.0, 0.0) : 0.0;
}

/// Anything that a recipe can say: every byte is one.
inline OrvTest::RingRecipe takeRecipe(Input &input)
{
    using OrvTest::RingRecipe;
    RingRecipe recipe;
    recipe.shape = static_cast<RingRecipe::Shape>(input.below(RingRecipe::ShapeCount));
    recipe.order = static_cast<RingRecipe::Order>(input.below(RingRecipe::OrderCount));
    recipe.bend = takePower(input, -7.0, 0.5);
    recipe.period = 2 + static_cast<int>(input.byte());
    recipe.noiseX = takeNoise(input);
    recipe.noiseY = takeNoise(input);
    recipe.repeats = 1 + static_cast<int>(input.below(4));
    recipe.tilt = input.byte() * (6.283185307179586 / 256.0);
    recipe.scale = input.flag() ? takePower(input, -6.0, 6.0) : 1.0;
    recipe.offset = input.flag() ? takePower(input, -3.0, 3.0) : 0.0;
    return recipe;
}

/// A ring of `count` corners by a recipe, and where it is random, by further bytes.
inline std::vector<QVector2D> takeRingByRecipe(Input &input, int count)
{
    const OrvTest::RingRecipe recipe = takeRecipe(input);
    OrvTest::Dice dice(input.take<std::uint16_t>());
    return OrvTest::ringOf(recipe, count, dice);
}

} // namespace OrvFuzz
