// Framing, without drawing.
#include <render/Camera.h>
#include <render/ModelGeometry.h>

#include <gtest/gtest.h>

#include <QtGui/QVector4D>

#include <cmath>
#include <random>

namespace {

using namespace Halvard::Orv::Render;

ModelGeometry geometryOf(const std::vector<QVector3D> &points)
{
    ModelGeometry geometry;
    for (const QVector3D &point : points) {
        if (geometry.bounds.include(point))
            geometry.points.push_back(point);
    }
    return geometry;
}

/// In clip space divided by w, as the vertex shader computes it.
QVector3D projected(const Camera &camera, const QVector3D &point)
{
    const QVector3D position = (point - camera.centre) * camera.rootScale * camera.rootScale;
    return (camera.projection * camera.view * QVector4D(position, 1)).toVector3DAffine();
}

TEST(CameraTest, EverythingIsInsideAndTouchesTheMargins)
{
    constexpr unsigned Seed = 4711;
    std::mt19937 random(Seed);
    std::uniform_real_distribution<float> part(-1, 1);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(testing::Message() << "seed " << Seed << ", round " << round);
        const QVector3D extent(std::pow(10.0f, part(random)), std::pow(10.0f, part(random)),
                               std::pow(10.0f, part(random)));
        std::vector<QVector3D> points;
        for (int i = 0; i < 20; ++i)
            points.push_back(extent * QVector3D(part(random), part(random), part(random)));
        const ViewAngles angles = {180.0 * double(part(random)), 90.0 * double(part(random))};
        const double aspect = std::pow(4.0, double(part(random)));

        const Camera camera = frameModel(geometryOf(points), angles, aspect);

        float left = 1, right = -1, bottom = 1, top = -1;
        for (const QVector3D &point : points) {
            const QVector3D p = projected(camera, point);
            ASSERT_LT(std::abs(p.x()), 1);
            ASSERT_LT(std::abs(p.y()), 1);
            ASSERT_LT(std::abs(p.z()), 1);
            left = std::min(left, p.x());
            right = std::max(right, p.x());
            bottom = std::min(bottom, p.y());
            top = std::max(top, p.y());
        }
        // 6 percent of the picture on each side: 0.12 of the 2 from -1 to 1. The
        // tighter direction is filled, up to rounding.
        const float fullest = std::max(right - left, top - bottom);
        EXPECT_NEAR(fullest, 2 * 0.88f, 0.01f);
    }
}

TEST(CameraTest, TheViewIsARotationAndAShift)
{
    const Camera camera =
        frameModel(geometryOf({{0, 0, 0}, {1, 2, 3}, {-2, 0, 1}}), {123, -45}, 1.5);
    const QMatrix4x4 &view = camera.view;
    const QVector3D right = view.row(0).toVector3D();
    const QVector3D up = view.row(1).toVector3D();
    const QVector3D back = view.row(2).toVector3D();
    EXPECT_NEAR(right.length(), 1, 1e-6);
    EXPECT_NEAR(up.length(), 1, 1e-6);
    EXPECT_LT((QVector3D::crossProduct(right, up) - back).length(), 1e-6f);
    EXPECT_EQ(view.row(3), QVector4D(0, 0, 0, 1));
}

TEST(CameraTest, TheFieldOfViewIsThatOfTheShorterSide)
{
    const ModelGeometry geometry = geometryOf({{0, 0, 0}, {1, 2, 3}, {-2, 0, 1}});
    const float cotangent = 1 / std::tan(16 * 3.14159265f / 180); // of half of 32 degrees
    const QMatrix4x4 wide = frameModel(geometry, {}, 2).projection;
    EXPECT_NEAR(wide(1, 1), cotangent, 1e-4f);
    EXPECT_NEAR(wide(0, 0), cotangent / 2, 1e-4f);
    const QMatrix4x4 tall = frameModel(geometry, {}, 0.25).projection;
    EXPECT_NEAR(tall(0, 0), cotangent, 1e-4f);
    EXPECT_NEAR(tall(1, 1), cotangent / 4, 1e-4f);
}

TEST(CameraTest, ModelsWithoutExtentGetAFiniteCamera)
{
    const std::vector<std::vector<QVector3D>> models = {
        {}, {{5, 6, 7}}, {{1e38f, 0, 0}}, {{0, 0, 0}, {0, 0, 1}}, {{0, 0, 0}, {1e-40f, 0, 0}}};
    for (const auto &points : models) {
        const Camera camera = frameModel(geometryOf(points), {0, 0}, 1);
        for (int i = 0; i < 16; ++i) {
            EXPECT_TRUE(std::isfinite(camera.view.constData()[i]));
            EXPECT_TRUE(std::isfinite(camera.projection.constData()[i]));
        }
        EXPECT_TRUE(std::isfinite(camera.rootScale));
        for (const QVector3D &point : points)
            EXPECT_LT(projected(camera, point).length(), 1.8f);
    }
}

TEST(BoundsTest, LeavesOutWhatIsNotFinite)
{
    Bounds bounds;
    EXPECT_FALSE(bounds.include(QVector3D(NAN, 0, 0)));
    EXPECT_FALSE(bounds.include(QVector3D(0, INFINITY, 0)));
    EXPECT_TRUE(bounds.isEmpty());
    EXPECT_EQ(bounds.radius(), 0);
    EXPECT_TRUE(bounds.include(QVector3D(1, 2, 3)));
    EXPECT_TRUE(bounds.include(QVector3D(4, -2, 3)));
    EXPECT_FALSE(bounds.include(QVector3D(0, 0, -INFINITY)));
    EXPECT_EQ(bounds.minimum(), QVector3D(1, -2, 3));
    EXPECT_EQ(bounds.maximum(), QVector3D(4, 2, 3));
    EXPECT_EQ(bounds.centre(), QVector3D(2.5f, 0, 3));
    EXPECT_EQ(bounds.radius(), 2.5); // half of the diagonal of 3 and 4
}

TEST(BoundsTest, TheLargestBoxHasAMiddleAndARadius)
{
    Bounds bounds;
    bounds.include(QVector3D(-3e38f, 0, 3e38f));
    bounds.include(QVector3D(3e38f, 0, 3.2e38f));
    EXPECT_EQ(bounds.centre().x(), 0);
    EXPECT_NEAR(double(bounds.centre().z()), 3.1e38, 1e32);
    EXPECT_NEAR(bounds.radius(), 3e38, 1e37);
}

} // namespace
