// The grid, the axes and marked faces.
#include "cli/RenderFixture.h"

#include <render/Overlays.h>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using Render::Bounds;

Bounds boundsOf(const QVector3D &minimum, const QVector3D &maximum)
{
    Bounds bounds;
    bounds.include(minimum);
    bounds.include(maximum);
    return bounds;
}

TEST(GridTest, LinesAreRoundNumbersApart)
{
    struct
    {
        const char *name;
        float side; // of a square, whose radius is side / sqrt(2)
        double spacing;
    } const rows[] = {{"radius 0.707, a third is 0.24", 1, 0.2},
                      {"radius 1.41, a third is 0.47", 2, 0.5},
                      {"radius 4.95, a third is 1.65", 7, 2},
                      {"radius 2.83, a third is 0.94", 4, 1},
                      {"radius 7070, a third is 2357", 10000, 2000},
                      {"radius 7.07e-7, a third is 2.4e-7", 1e-6f, 2e-7}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const double spacing = Render::gridSpacing(boundsOf({0, 0, 0}, {row.side, row.side, 0}));
        EXPECT_NEAR(spacing, row.spacing, 1e-9 * row.spacing);
    }
}

TEST(GridTest, EndsFarFromTheOriginToo)
{
    // Floats are 64 apart there: more than the lines.
    const Bounds bounds = boundsOf({1e9f, 0, 0}, {1e9f + 64, 64, 64});
    Render::ViewPose pose;
    pose.target = {1e9, 0, 0};
    pose.distance = 100;
    Render::LineView view;
    const auto lines = Render::gridLines(bounds, Render::cameraAt(pose, bounds, 1),
                                         Render::UpAxis::Y, Qt::white, view);
    EXPECT_GT(lines.size(), 10u);
    EXPECT_LT(lines.size(), 100u);
}

class MarkTest : public RenderTest
{};

TEST_F(MarkTest, AFaceIsMarkedByItsEdgesAndCorners)
{
    size = {200, 200};
    options.marked = {{-0.5f, -0.5f, 0}, {0.5f, -0.5f, 0}, {0, 0.5f, 0}};
    const QImage picture = draw(QByteArray(square) + "f 1/1 2/2 3/3 4/4\n");
    // The square fills 88 percent of the picture: a unit is 88 pixels.
    const QColor lowerLeft = picture.pixelColor(100 - 44, 100 + 44);
    const QColor lowerEdge = picture.pixelColor(100, 100 + 44);
    for (const QColor &colour : {lowerLeft, lowerEdge}) {
        EXPECT_GT(colour.red(), 200);
        EXPECT_LT(colour.blue(), 80);
    }
    const QColor inside = picture.pixelColor(100, 100);
    EXPECT_EQ(inside.red(), inside.blue());
}

TEST_F(MarkTest, HiddenPartsShineThrough)
{
    size = {200, 200};
    options.marked = {{-0.5f, 0, -1}, {0.5f, 0, -1}};
    const QImage hidden = draw(QByteArray(square) + "f 1/1 2/2 3/3 4/4\n");
    const QColor line = hidden.pixelColor(100, 100);
    EXPECT_GT(line.red(), line.blue() + 20);
    options.marked = {{-0.5f, 0, 0.0f}, {0.5f, 0, 0.0f}};
    const QImage seen = draw(QByteArray(square) + "f 1/1 2/2 3/3 4/4\n");
    EXPECT_GT(seen.pixelColor(100, 100).red(), line.red());
}

TEST_F(MarkTest, CornersThatAreNowhereAreLeftOut)
{
    options.marked = {{float(qQNaN()), 0, 0}, {float(qInf()), 0, 0}};
    const QByteArray model = QByteArray(square) + "f 1/1 2/2 3/3 4/4\n";
    const QImage marked = draw(model);
    options.marked.clear();
    EXPECT_EQ(marked, draw(model));
}

using HighlightTest = RenderTest;

TEST_F(HighlightTest, AMaterialStandsOutFromTheOthers)
{
    files.write(QStringLiteral("m.mtl"), "newmtl left\nKd 0 0 1\nnewmtl right\nKd 0 0 1\n");
    const QByteArray model = "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 2 0 0\nv 0 1 0\nv 1 1 0\nv 2 1 0\n"
                             "usemtl left\nf 1 2 5 4\nusemtl right\nf 2 3 6 5\n";
    for (const Render::Shading shading : Render::allShadings()) {
        SCOPED_TRACE(Render::shadingName(shading).toStdString());
        options.shading = shading;
        options.highlighted = QString();
        const QImage plain = draw(model);
        options.highlighted = QStringLiteral("right");
        const QImage picture = draw(model);
        const QColor pale = at(picture, 0.25, 0.5);
        EXPECT_NEAR(pale.red(), pale.blue(), 2);
        EXPECT_NEAR(pale.red(), pale.green(), 2);
        EXPECT_NE(at(picture, 0.75, 0.5), at(plain, 0.75, 0.5));
        EXPECT_GT(at(picture, 0.75, 0.5).red(), at(picture, 0.75, 0.5).blue() - 60);
        options.highlighted = QStringLiteral("neither");
        const QColor none = at(draw(model), 0.75, 0.5);
        EXPECT_EQ(none, at(plain, 0.75, 0.5));
    }
}

TEST(ShadingNamesTest, NamesAndShadingsGoTogether)
{
    EXPECT_EQ(Render::allShadings().size(), 6u);
    for (const Render::Shading shading : Render::allShadings())
        EXPECT_EQ(Render::shadingNamed(Render::shadingName(shading)), shading);
    EXPECT_FALSE(Render::shadingNamed(QStringLiteral("Material")));
}

} // namespace
