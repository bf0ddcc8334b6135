// The plain geometry that the library is compared with, against shapes worked out by hand.
#include "support/PlainGeometry.h"

#include "reference/FaceTriangles.h"
#include "support/MessageCapture.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using namespace OrvReference;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::FloatEq;
using ::testing::IsEmpty;

using Points = std::vector<QVector2D>;

std::vector<std::string> warnings(const MessageCapture &capture)
{
    return capture.texts(QtWarningMsg);
}

std::vector<int> firstTriangle(const std::vector<int> &triangles)
{
    return {triangles.begin(), triangles.begin() + 3};
}

TEST(PlainTriangulation, ThreeAndFourCornersAreFixed)
{
    const Points flat(4, QVector2D(1.0f, 1.0f));
    const Points three(flat.begin(), flat.begin() + 3);
    EXPECT_THAT(plainTriangulate2D(three, false), ElementsAre(0, 1, 2));
    EXPECT_THAT(plainTriangulate2D(three, true), ElementsAre(0, 2, 1));
    EXPECT_THAT(plainTriangulate2D(flat, false), ElementsAre(0, 1, 3, 1, 2, 3));
    EXPECT_THAT(plainTriangulate2D(flat, true), ElementsAre(0, 3, 1, 1, 3, 2));
}

TEST(PlainTriangulation, TooFewCornersAreSaidSo)
{
    const MessageCapture capture;
    EXPECT_THAT(plainTriangulate2D({{0.0f, 0.0f}, {1.0f, 0.0f}}, false), IsEmpty());
    EXPECT_THAT(triangulateFace({0, 1}, {0, 0, 0, 1, 0, 0}), IsEmpty());
    EXPECT_THAT(warnings(capture),
                ElementsAre("Cannot triangulate a polygon with fewer than 3 vertices"));
}

//            3 (1,3)
//     4 (-1,2)    2 (3,2)     The cosines of the corners: 0 and 1 are -2/√20 wide, 3 is -3/5,
//                             2 and 4 are square. 2 goes first as the lower of the two; then 1
//       0 (0,0)  1 (2,0)      has 1/√10, 3 has 1/√50, and 0 and 4 stay as they were.
const Points Pentagon = {{0.0f, 0.0f}, {2.0f, 0.0f}, {3.0f, 2.0f}, {1.0f, 3.0f}, {-1.0f, 2.0f}};

TEST(PlainTriangulation, SharpestEarFirstAndTheLowestOfEquals)
{
    EXPECT_THAT(plainTriangulate2D(Pentagon, false), ElementsAre(1, 2, 3, 0, 1, 3, 4, 0, 3));
}

// Corner i of the list is corner 4 - i of the drawing. Of the two square corners the drawing's 4
// has the lower position now; then 0 has 1/√10.
TEST(PlainTriangulation, AClockwiseRingIsWalkedBackwards)
{
    const Points turned(Pentagon.rbegin(), Pentagon.rend());
    EXPECT_THAT(plainTriangulate2D(turned, true), ElementsAre(1, 0, 4, 1, 4, 3, 2, 1, 3));
}

TEST(PlainTriangulation, AWrongDirectionFindsNoEar)
{
    EXPECT_THAT(plainTriangulate2D(Pentagon, true), IsEmpty());
}

//  4 (0,4)       2 (4,4)
//    |  \       /  |        Corners 0 and 1 are blocked by 3, which lies within their triangles.
//    |   3 (2,1)   |        2 and 4 have the cosine 3/√13; 2 is the lower. Then 1 has 2/√5.
//  0 (0,0) ----- 1 (4,0)
TEST(PlainTriangulation, ACornerWithinTheTriangleBlocks)
{
    const Points notched = {{0.0f, 0.0f}, {4.0f, 0.0f}, {4.0f, 4.0f}, {2.0f, 1.0f}, {0.0f, 4.0f}};
    EXPECT_THAT(plainTriangulate2D(notched, false), ElementsAre(1, 2, 3, 0, 1, 3, 4, 0, 3));
}

//          7 (8,4) ------- 6 (16,4)
//        /  :              |
//      /    :           5 (16,1)        0 is the sharpest corner (3/5), and 4 lies on the edge
//  0        4 (8,0) <                   from 7 to 1 that would close its triangle.
//      \    :           3 (16,-1)       Of the square corners 2 and 6, 2 is the lower.
//        \  :              |
//          1 (8,-4) ------ 2 (16,-4)
const Points Fish = {{0.0f, 0.0f}, {8.0f, -4.0f}, {16.0f, -4.0f}, {16.0f, -1.0f},
                     {8.0f, 0.0f}, {16.0f, 1.0f}, {16.0f, 4.0f},  {8.0f, 4.0f}};

TEST(PlainTriangulation, ACornerOnTheEdgeBlocks)
{
    EXPECT_THAT(firstTriangle(plainTriangulate2D(Fish, false)), ElementsAre(1, 2, 3));
}

TEST(PlainTriangulation, ACoincidentCornerDoesNotBlock)
{
    Points touching = Fish;
    touching[4] = touching[7];
    EXPECT_THAT(firstTriangle(plainTriangulate2D(touching, false)), ElementsAre(7, 0, 1));
}

const std::vector<float> PentagonInSpace = {0, 0, 0, 2, 0, 0, 3, 2, 0, 1, 3, 0, -1, 2, 0};

TEST(PlainTriangulation, FacesAreCutInTheirPlane)
{
    EXPECT_THAT(triangulateFace({0, 1, 2, 3, 4}, PentagonInSpace),
                ElementsAre(1, 2, 3, 0, 1, 3, 4, 0, 3));
    // About its own normal a ring that is turned over runs counter-clockwise as well: its corner i
    // is the vertex 4 - i. Of the square corners the vertex 4 goes first, then 0 has 1/√10, and the
    // lowest corner that is left is 1, which is the vertex 3.
    EXPECT_THAT(triangulateFace({4, 3, 2, 1, 0}, PentagonInSpace),
                ElementsAre(0, 4, 3, 1, 0, 3, 1, 3, 2));
}

TEST(PlainTriangulation, FacesInThePlaneOfTheReferenceAxisAreCutToo)
{
    // (x, y) of the drawing as (z, x): the normal is the y axis itself.
    std::vector<float> turned;
    for (const QVector2D &point : Pentagon)
        turned.insert(turned.end(), {point.y(), 0.0f, point.x()});
    EXPECT_THAT(triangulateFace({0, 1, 2, 3, 4}, turned), ElementsAre(1, 2, 3, 0, 1, 3, 4, 0, 3));
}

TEST(PlainTriangulation, AFaceWithoutAnAreaHasNoPlane)
{
    const MessageCapture capture;
    const std::vector<float> line = {0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0, 4, 0, 0};
    EXPECT_THAT(triangulateFace({0, 1, 2, 3, 4}, line), IsEmpty());
    EXPECT_THAT(triangulateFace({0, 1, 2, 3}, line), ElementsAre(0, 1, 3, 1, 2, 3));
    EXPECT_THAT(warnings(capture), ElementsAre("Unable to triangulate polygon."));
}

TEST(PlainVertexNormals, PointToTheClockwiseSide)
{
    EXPECT_THAT(plainVertexNormals({0, 0, 0, 1, 0, 0, 0, 1, 0, 5, 5, 5}, {0, 1, 2}),
                ElementsAre(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, 0));
}

// One triangle lies in the plane z = 0 with a right angle at its first corner: the weight is 1. The
// other lies in the plane x = 0, and the sine at its first corner is 4/5. They share 0 and 2.
TEST(PlainVertexNormals, WeighByTheSineAtTheFirstCorner)
{
    const std::vector<float> positions = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 3, 4};
    const auto length = static_cast<float>(std::sqrt(0.8 * 0.8 + 1.0 * 1.0));
    EXPECT_THAT(plainVertexNormals(positions, {0, 1, 2, 0, 2, 3}),
                ElementsAre(FloatEq(-0.8f / length), 0, FloatEq(-1.0f / length), 0, 0, -1,
                            FloatEq(-0.8f / length), 0, FloatEq(-1.0f / length), -1, 0, 0));
}

} // namespace
