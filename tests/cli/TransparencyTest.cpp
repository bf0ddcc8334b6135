// Materials with d below 1.
#include "cli/RenderFixture.h"

namespace {

using namespace OrvTest;

/// Squares one behind the other, all of the picture's middle.
class TransparencyTest : public RenderTest
{
protected:
    void SetUp() override
    {
        RenderTest::SetUp();
        files.write(QStringLiteral("m.mtl"), "newmtl red\nKd 1 0 0\n"
                                             "newmtl glassBlue\nKd 0 0 1\nd 0.5\n"
                                             "newmtl glassGreen\nKd 0 1 0\nd 0.5\n"
                                             "newmtl nothing\nKd 0 0 1\nd 0\n");
    }

    /// A square at depth z.
    static QByteArray pane(const char *material, int z)
    {
        const QByteArray depth = ' ' + QByteArray::number(z) + '\n';
        return "v -1 -1" + depth + "v 1 -1" + depth + "v 1 1" + depth + "v -1 1" + depth +
               "usemtl " + material + "\nf -4 -3 -2 -1\n";
    }

    QColor colourOf(const QByteArray &panes) { return centre(draw("mtllib m.mtl\n" + panes)); }
};

TEST_F(TransparencyTest, OpaqueThingsShineThrough)
{
    const QColor behind = colourOf(pane("glassBlue", 1) + pane("red", 0));
    EXPECT_GT(behind.red(), 90);
    EXPECT_LT(behind.red(), 160);
    EXPECT_GT(behind.blue(), 90);
    EXPECT_LT(behind.blue(), 160);
    EXPECT_EQ(colourOf(pane("red", 0) + pane("glassBlue", 1)), behind);
}

TEST_F(TransparencyTest, OpaqueThingsHideGlassBehindThem)
{
    const QColor colour = colourOf(pane("glassBlue", -1) + pane("red", 0));
    EXPECT_GT(colour.red(), 200);
    EXPECT_EQ(colour.blue(), 0);
}

TEST_F(TransparencyTest, NearGlassCoversFarGlass)
{
    // Half of the near one, half of the far one's half.
    const QColor colour = colourOf(pane("glassBlue", 1) + pane("glassGreen", -1));
    EXPECT_GT(colour.blue(), colour.green() + 30);
    EXPECT_GT(colour.green(), 40);
    EXPECT_EQ(colourOf(pane("glassGreen", -1) + pane("glassBlue", 1)), colour);

    angles.azimuth = 180;
    const QColor fromBehind = colourOf(pane("glassBlue", 1) + pane("glassGreen", -1));
    EXPECT_GT(fromBehind.green(), fromBehind.blue() + 30);
}

TEST_F(TransparencyTest, BothFacesOfAThingAreSeen)
{
    // One material, so one command: a near and a far pane that look apart, as those
    // of a closed thing do, and the near one alone.
    const QByteArray far = "v -1 -1 -1\nv 1 -1 -1\nv 1 1 -1\nv -1 1 -1\n"
                           "usemtl glassBlue\nf -1 -2 -3 -4\n";
    const QColor both = colourOf(pane("glassBlue", 1) + far);
    const QColor one = colourOf(pane("glassBlue", 1));
    EXPECT_GT(both.blue(), one.blue() + 30);
    EXPECT_EQ(colourOf(far + pane("glassBlue", 1)), both);
}

TEST_F(TransparencyTest, PanesOfOneMaterialDoNotHideEachOther)
{
    const QColor one = colourOf(pane("glassBlue", 1));
    EXPECT_GT(colourOf(pane("glassBlue", 1) + pane("glassBlue", -1)).blue(), one.blue() + 30);
    EXPECT_GT(colourOf(pane("glassBlue", -1) + pane("glassBlue", 1)).blue(), one.blue() + 30);
}

TEST_F(TransparencyTest, TheBackgroundShinesThrough)
{
    setBackground(Qt::white);
    const QColor colour = colourOf(pane("glassBlue", 0));
    EXPECT_NEAR(colour.red(), 128, 2);
    EXPECT_GT(colour.blue(), 200);

    setBackground(Qt::transparent);
    EXPECT_NEAR(colourOf(pane("glassBlue", 0)).alpha(), 128, 2);
}

TEST_F(TransparencyTest, WhatIsFullyTransparentIsNotThere)
{
    const QColor colour = colourOf(pane("nothing", 1) + pane("red", 0));
    EXPECT_GT(colour.red(), 200);
    EXPECT_EQ(colour.blue(), 0);
}

} // namespace
