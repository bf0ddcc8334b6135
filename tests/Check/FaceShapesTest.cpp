#include "FaceShapes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Halvard::Orv::Checking::FaceShape;
using Halvard::Orv::Checking::FaceShapes;

FaceShape shapeOf(const std::vector<float> &xyz)
{
    FaceShapes shapes;
    return shapes.examine(static_cast<int>(xyz.size() / 3), xyz.data());
}

/// The odd things of a shape, by their letters: Coincident, Area, Turned, Split, Planar.
std::string oddnessOf(const FaceShape &shape)
{
    std::string text;
    text += shape.hasCoincidentCorners ? "C" : "";
    text += shape.hasNoArea ? "A" : "";
    text += shape.isTurnedOver ? "T" : "";
    text += shape.isSplitWrongly ? "S" : "";
    text += shape.isNotPlanar ? "P" : "";
    return text;
}

TEST(FaceShapes, KnowWhatBecomesOfAFace)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float huge = std::numeric_limits<float>::max();
    // A dart, concave at its notch, which is corner 0; the others are right, above and left:
    //
    //          2      .
    //         / \     .
    //        / 0 \    .
    //       /.   .\   .
    //      3       1  .
    const std::vector<float> dart{2, 1, 0, 4, 0, 0, 2, 4, 0, 0, 0, 0};
    const struct
    {
        const char *name;
        std::vector<float> xyz;
        int triangles;
        const char *oddness;
    } cases[] = {
        {"no corner", {}, 0, ""},
        {"two corners", {0, 0, 0, 1, 0, 0}, 0, ""},
        {"triangle", {0, 0, 0, 1, 0, 0, 0, 1, 0}, 1, ""},
        {"triangle of a point", {1, 1, 1, 1, 1, 1, 1, 1, 1}, 1, "CA"},
        {"triangle with a corner twice", {0, 0, 0, 1, 0, 0, 1, 0, 0}, 1, "CA"},
        {"triangle on a line", {0, 0, 0, 1, 1, 1, 3, 3, 3}, 1, "A"},
        {"triangle as thin as can be", {0, 0, 0, 1, 0, 0, 0, 3e-6f, 0}, 1, ""},
        {"triangle that is thinner", {0, 0, 0, 1, 0, 0, 0, 0.3e-6f, 0}, 1, "A"},
        {"triangle of a millionth", {0, 0, 0, 1e-6f, 0, 0, 0, 1e-6f, 0}, 1, ""},
        {"triangle far away",
         {1e5f, 1e5f, 1e5f, 1e5f + 1, 1e5f, 1e5f, 1e5f, 1e5f + 1, 1e5f},
         1,
         "T"},
        {"triangle with a NaN", {0, 0, 0, nan, 0, 0, 0, 1, 0}, 1, ""},
        {"triangle beyond floats", {0, 0, 0, huge, 0, 0, 0, huge, 0}, 1, ""},
        {"square", {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}, 2, ""},
        {"square with a corner twice", {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0}, 2, "C"},
        {"dart from its notch", dart, 2, "S"},
        {"dart from the corner before", {0, 0, 0, 2, 1, 0, 4, 0, 0, 2, 4, 0}, 2, ""},
        {"dart from its tip", {2, 4, 0, 0, 0, 0, 2, 1, 0, 4, 0, 0}, 2, "S"},
        {"dart from the corner behind", {4, 0, 0, 2, 4, 0, 0, 0, 0, 2, 1, 0}, 2, ""},
        {"quad that crosses itself, one side larger", {0, 0, 0, 3, 0, 0, 1, 2, 0, 2, 2, 0}, 2, ""},
        {"quad that crosses itself, and so would its second half",
         {0, 0, 0, 1, 0, 0, 1, 2, 0, 2, 3, 0},
         2,
         ""},
        {"quad that crosses itself, and so would its first half",
         {0, 0, 0, 0, 1, 0, 1, 0, 0, 1, 2, 0},
         2,
         ""},
        {"quad that crosses itself evenly", {0, 0, 0, 1, 1, 0, 1, 0, 0, 0, 1, 0}, 2, ""},
        {"quad bent by a twentieth", {0, 0, 0, 1, 0, 0, 1, 1, 0.05f, 0, 1, 0}, 2, ""},
        {"quad bent by half", {0, 0, 0, 1, 0, 0, 1, 1, 0.5f, 0, 1, 0}, 2, "P"},
        {"pentagon", {0, 0, 0, 2, 0, 0, 3, 2, 0, 1, 3, 0, -1, 2, 0}, 3, ""},
        {"pentagon of a point", {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 0, "CA"},
        {"pentagon too small",
         {0, 0, 0, 2e-4f, 0, 0, 3e-4f, 2e-4f, 0, 1e-4f, 3e-4f, 0, -1e-4f, 2e-4f, 0},
         0,
         ""},
    };
    for (const auto &test : cases) {
        const FaceShape shape = shapeOf(test.xyz);
        EXPECT_EQ(shape.triangles, test.triangles) << test.name;
        EXPECT_EQ(oddnessOf(shape), test.oddness) << test.name;
    }
}

/// What is odd about a shape is odd in every unit.
TEST(FaceShapes, AreTheSameInEveryUnit)
{
    const std::vector<float> shapes[] = {
        {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0},     // a square
        {2, 1, 0, 4, 0, 0, 2, 4, 0, 0, 0, 0},     // a dart
        {0, 0, 0, 1, 0, 0, 1, 1, 0.5f, 0, 1, 0},  // a bent quad
        {0, 0, 0, 1, 0, 0, 2, 0, 0, 1, 1e-7f, 0}, // nearly a line
    };
    for (const std::vector<float> &shape : shapes) {
        const std::string expected = oddnessOf(shapeOf(shape));
        for (const int exponent : {-40, -20, -3, 3, 20, 40}) {
            std::vector<float> scaled = shape;
            for (float &coordinate : scaled)
                coordinate = std::ldexp(coordinate, exponent);
            EXPECT_EQ(oddnessOf(shapeOf(scaled)), expected) << "times 2^" << exponent;
        }
    }
}

/// 3 x 4 rectangle: twice its area is 24, towards z, from which it runs counter-clockwise.
TEST(FaceShapes, KnowTheirSide)
{
    const FaceShape shape = shapeOf({5, 5, 5, 8, 5, 5, 8, 9, 5, 5, 9, 5});
    EXPECT_EQ(shape.normal[0], 0.0);
    EXPECT_EQ(shape.normal[1], 0.0);
    EXPECT_EQ(shape.normal[2], 24.0);
}

} // namespace
