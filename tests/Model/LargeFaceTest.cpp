// A face of 100,000 corners, which loops over all corners would be busy with for
// minutes.
#include "support/GLTest.h"
#include "support/LoadedOBJ.h"
#include "support/QtPrinting.h"
#include "support/RandomRings.h"
#include "support/TemporaryModel.h"

#include <OrvModel/Triangulate2D.h>
#include <OrvModel/Triangulate3D.h>

#include <gmock/gmock.h>

#include <QtGui/QVector3D>

#include <algorithm>
#include <numeric>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::IsEmpty;

namespace {

constexpr int CornerCount = 100000;

std::vector<QVector2D> manyCorners()
{
    Dice dice(5);
    return windingRing(dice, CornerCount).points;
}

std::vector<unsigned> triangulated(const std::vector<QVector2D> &points)
{
    QVector<int> triangles;
    Triangulate2D(static_cast<int>(points.size()), reinterpret_cast<const float *>(points.data()),
                  triangles, false);
    return {triangles.begin(), triangles.end()};
}

TEST(LargeFace, IsCutInSpaceAsInThePlane)
{
    const std::vector<QVector2D> points = manyCorners();
    std::vector<float> positions;
    // The normal is the z axis, u the x axis and v the y axis; the first corner becomes
    // the origin.
    std::vector<QVector2D> moved;
    for (const QVector2D point : points) {
        positions.insert(positions.end(), {point.x(), point.y(), 0.0f});
        moved.push_back(point - points[0]);
    }
    std::vector<int> ring(points.size());
    std::iota(ring.begin(), ring.end(), 0);
    QVector<unsigned> triangles;
    Triangulate3D(QVector3D(0, 0, 1), static_cast<int>(ring.size()), ring.data(), positions.data(),
                  triangles);
    EXPECT_EQ(triangles.size(), 3 * (static_cast<int>(ring.size()) - 2));
    EXPECT_TRUE(std::vector<unsigned>(triangles.begin(), triangles.end()) == triangulated(moved));
}

class LargeFaceInAFile : public GLTest
{};

TEST_F(LargeFaceInAFile, IsLoaded)
{
    const std::vector<QVector2D> points = manyCorners();
    QByteArray text;
    QByteArray face = "f";
    for (std::size_t i = 0; i < points.size(); ++i) {
        text += "v " + QByteArray::number(static_cast<double>(points[i].x())) + ' ' +
                QByteArray::number(static_cast<double>(points[i].y())) + " 0\n";
        face += ' ' + QByteArray::number(static_cast<int>(i) + 1);
    }
    const TemporaryModel directory;
    const LoadedOBJ loaded(directory.write(QStringLiteral("model.obj"), text + face + '\n'));
    EXPECT_THAT(loaded.warnings(), IsEmpty());
    EXPECT_EQ(loaded.vertexCount(), points.size());
    EXPECT_EQ(loaded.indices().size(), 3 * (points.size() - 2));
}

} // namespace
