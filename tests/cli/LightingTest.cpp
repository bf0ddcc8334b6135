// Colours of materials, and light that does not depend on which way a face runs.
#include "cli/RenderFixture.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace OrvTest;

class LightingTest : public RenderTest
{
protected:
    /// A square of a material given by the lines of its section.
    QColor colourOf(const QByteArray &material)
    {
        files.write(QStringLiteral("m.mtl"), "newmtl m\n" + material);
        return centre(draw("mtllib m.mtl\n" + QByteArray(square) + "usemtl m\nf 1 2 3 4\n"));
    }
};

TEST_F(LightingTest, ARedMaterialIsRed)
{
    const QColor colour = colourOf("Kd 1 0 0\n");
    EXPECT_GT(colour.red(), 200);
    EXPECT_EQ(colour.green(), 0);
    EXPECT_EQ(colour.blue(), 0);
}

TEST_F(LightingTest, AFileWithoutMaterialsIsLightGrey)
{
    const QColor colour = centre(draw(QByteArray(square) + "f 1 2 3 4\n"));
    const auto [low, high] = std::minmax({colour.red(), colour.green(), colour.blue()});
    EXPECT_GE(low, 140);
    EXPECT_LE(high, 215);
    EXPECT_LE(high - low, 10);
}

TEST_F(LightingTest, AMaterialWithoutColoursIsGrey)
{
    const QColor colour = colourOf("");
    EXPECT_GT(colour.lightness(), 150);
    EXPECT_LT(colour.lightness(), 220);
    EXPECT_LT(colour.saturation(), 20);
}

TEST_F(LightingTest, WhiteIsNotBurntOut)
{
    for (const char *material : {"Kd 1 1 1\n", "Kd 9 9 9\nKs 0 0 0\n"}) {
        const QColor colour = colourOf(material);
        EXPECT_GT(colour.lightness(), 210) << material;
        EXPECT_LT(colour.lightness(), 255) << material;
    }
}

TEST_F(LightingTest, BlackStaysBlack)
{
    EXPECT_EQ(colourOf("Kd 0 0 0\n"), QColor(Qt::black));
}

TEST_F(LightingTest, NumbersThatAreNoneLeaveTheDefaults)
{
    EXPECT_EQ(colourOf("Kd 1e39 0 0\nNs 1e39\nKs 1e39 0 0\n"), colourOf(""));
}

TEST_F(LightingTest, TheOrderOfCornersDoesNotMatter)
{
    const QImage forth = draw(QByteArray(square) + "f 1 2 3 4\n");
    EXPECT_EQ(draw(QByteArray(square) + "f 4 3 2 1\n"), forth);
}

TEST_F(LightingTest, NeitherDoesTheSideThatNormalsPointTo)
{
    const QByteArray corners = "f 1/1/1 2/2/1 3/3/1 4/4/1\n";
    const QImage towards = draw(QByteArray(square) + "vn 0 0.6 0.8\n" + corners);
    const QImage away = draw(QByteArray(square) + "vn 0 -0.6 -0.8\n" + corners);
    EXPECT_EQ(towards, away);
    EXPECT_GT(centre(towards).lightness(), 100);
}

TEST_F(LightingTest, FacesAreLitWithoutNormals)
{
    const QByteArray corners = "f 1/1/1 2/2/1 3/3/1 4/4/1\n";
    const QColor lit = centre(draw(QByteArray(square) + "vn 0 0 1\n" + corners));
    for (const char *normal : {"0 0 0", "nan 0 1", "inf 0 0", "0 0 1e-45", "0 0 3e38"}) {
        const QColor colour = centre(draw(QByteArray(square) + "vn " + normal + '\n' + corners));
        EXPECT_NEAR(colour.lightness(), lit.lightness(), 1) << normal;
    }
}

TEST_F(LightingTest, ACornerWithoutANormalLeavesItToTheOthers)
{
    const auto drawn = [this](const char *normal) {
        return draw(QByteArray(square) + "vn 0 0.6 0.8\nvn " + normal + "\nf 1/1/1 2/2/1 3/3/2\n");
    };
    const QColor same = centre(drawn("0 0.6 0.8"));
    EXPECT_GT(std::abs(same.lightness() - centre(drawn("0 0 1")).lightness()), 3);
    for (const char *normal : {"0 0 0", "nan 0 0", "0 inf 0", "0 0 -inf"})
        EXPECT_NEAR(centre(drawn(normal)).lightness(), same.lightness(), 1) << normal;
}

TEST_F(LightingTest, LightComesFromAboveAndFromTheCamera)
{
    const auto lightness = [this](const char *normal) {
        return centre(draw(QByteArray(square) + "vn " + normal + "\nf 1/1/1 2/2/1 3/3/1 4/4/1\n"))
            .lightness();
    };
    EXPECT_GT(lightness("0 0.7 0.7"), lightness("0 -0.7 0.7") + 30);
    EXPECT_GT(lightness("0 0 1"), lightness("1 0 0.01") + 30);
    // Nothing is left in the dark.
    EXPECT_GT(lightness("0 -1 0.01"), 30);
}

TEST_F(LightingTest, SharpHighlightsShineWhereTheLightIsReflected)
{
    files.write(QStringLiteral("m.mtl"), "newmtl m\nKd 0 0 0\nKs 1 1 1\nNs 100\n");
    // Tilted so that it reflects the light beside the camera, and turned away.
    const auto lightness = [this](const char *normal) {
        return centre(draw("mtllib m.mtl\n" + QByteArray(square) + "vn " + normal +
                           "\nusemtl m\nf 1/1/1 2/2/1 3/3/1 4/4/1\n"))
            .lightness();
    };
    EXPECT_GT(lightness("-0.18 0.26 0.95"), 150);
    EXPECT_LT(lightness("0.5 -0.5 0.7"), 20);
}

TEST_F(LightingTest, EveryCommandOfABundleHasItsMaterial)
{
    QByteArray library;
    QByteArray model = "mtllib m.mtl\n";
    constexpr int Count = 8;
    for (int i = 0; i < Count; ++i) {
        const QByteArray number = QByteArray::number(i);
        // Each a colour of the cube's corners.
        library += "newmtl m" + number + "\nKd " + (i & 1 ? "1 " : "0 ") + (i & 2 ? "1 " : "0 ") +
                   (i & 4 ? "1\n" : "0\n");
        const QByteArray left = QByteArray::number(2 * i);
        const QByteArray right = QByteArray::number(2 * i + 2);
        model += "v " + left + " 0 0\nv " + right + " 0 0\nv " + right + " 2 0\nv " + left +
                 " 2 0\nusemtl m" + number + "\nf -4 -3 -2 -1\n";
    }
    files.write(QStringLiteral("m.mtl"), library);
    size = {160, 40};
    const QImage picture = draw(model);
    for (int i = 0; i < Count; ++i) {
        // The strip reaches from 6 to 94 percent.
        const QColor colour = at(picture, 0.06 + 0.88 * (i + 0.5) / Count, 0.5);
        EXPECT_EQ(colour.red() > 100, bool(i & 1)) << i;
        EXPECT_EQ(colour.green() > 100, bool(i & 2)) << i;
        EXPECT_EQ(colour.blue() > 100, bool(i & 4)) << i;
    }
}

} // namespace
