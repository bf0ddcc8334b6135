// examples/procedural: the pixels of its picture.
#include "support/TemporaryModel.h"

#include "ExamplePicture.h"
#include "ExampleRun.h"

#include <gtest/gtest.h>

namespace {

using OrvTest::colourAt;
using OrvTest::ExampleRun;
using OrvTest::expectColour;
using OrvTest::runExample;

const double sky[] = {0.75, 0.85, 0.95};
const double water[] = {0.2, 0.5, 0.8};
const double waterOpacity = 0.6;

class ProceduralExampleTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString path = files.path(QStringLiteral("island.png"));
        ASSERT_EQ(runExample({path}), (ExampleRun{0, "", ""}));
        ASSERT_TRUE(picture.load(path));
        ASSERT_EQ(picture.size(), QSize(640, 480));
        camera.perspective(40, 640.0f / 480, 1, 100);
        camera.lookAt({6, 7, 11}, {0, 0, 0}, {0, 1, 0});
    }

    OrvTest::TemporaryModel files;
    QImage picture;
    QMatrix4x4 camera;
};

} // namespace

TEST_F(ProceduralExampleTest, BlendsTheWaterWithWhatIsBehindIt)
{
    // At the far corner, the sky is seen through the water; the land is lower there.
    const double light = 0.3 + 0.7 / std::sqrt(0.6 * 0.6 + 1 + 0.3 * 0.3); // from above
    double expected[3];
    for (int i = 0; i < 3; ++i)
        expected[i] = waterOpacity * water[i] * light + (1 - waterOpacity) * sky[i];
    expectColour(colourAt(picture, camera, {-3.9f, 0, -3.9f}), expected[0], expected[1],
                 expected[2]);
}

TEST_F(ProceduralExampleTest, DrawsTheLandBehindTheWaterAndAboveIt)
{
    const auto isGreen = [](const QColor &colour) {
        return colour.green() > colour.red() && colour.red() > colour.blue();
    };
    const auto isBlue = [](const QColor &colour) {
        return colour.blue() > colour.green() && colour.green() > colour.red();
    };
    EXPECT_TRUE(isGreen(colourAt(picture, camera, {0, 1.6f, 0.1f}))); // just below the summit
    EXPECT_TRUE(isGreen(colourAt(picture, camera, {1, -0.4f, 4})));   // below the water's edge
    // In the middle of the near side, 2.3 times as deep as wide: land seen through the water.
    const QColor shallow = colourAt(picture, camera, {1, 0, 3.5f});
    EXPECT_TRUE(isBlue(shallow)) << shallow.name().toStdString();
    // The land takes from the blue what the sky would give.
    EXPECT_LT(shallow.blue(), 255 * (waterOpacity * water[2] + (1 - waterOpacity) * sky[2]));
    EXPECT_GT(shallow.blue(), 255 * waterOpacity * water[2] * 0.8);
}

TEST_F(ProceduralExampleTest, LightsTheSideOfTheHillThatTheLightComesFrom)
{
    // The light comes from the left, and a little from the front. The hill as the example makes it:
    const auto land = [](float x, float z) {
        const float hill = 2.5f * std::exp(-0.25f * (x * x + z * z));
        return QVector3D(x, hill + 0.3f * std::sin(2 * x) * std::cos(2 * z) - 0.8f, z);
    };
    const QColor left = colourAt(picture, camera, land(-0.8f, 0.3f));
    const QColor right = colourAt(picture, camera, land(1, 0.3f));
    EXPECT_GT(left.green(), 2 * right.green())
        << left.name().toStdString() << ' ' << right.name().toStdString();
}

TEST_F(ProceduralExampleTest, LeavesTheSkyAround)
{
    for (const QPoint &corner : {QPoint(0, 0), QPoint(639, 0), QPoint(0, 479), QPoint(639, 479)})
        expectColour(picture.pixelColor(corner), sky[0], sky[1], sky[2]);
}

TEST(ProceduralExampleErrorsTest, SaysWhatIsWrong)
{
    const OrvTest::TemporaryModel files;
    EXPECT_EQ(runExample({files.path(QStringLiteral("none/island.png"))}),
              (ExampleRun{1, "", "The picture cannot be written.\n"}));
    EXPECT_EQ(runExample({}), (ExampleRun{1, "", "Usage: procedural OUT.png\n"}));
}
