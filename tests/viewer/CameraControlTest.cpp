// How the camera of the window moves. Needs no window.
#include <gmock/gmock.h>

#include <viewer/CameraControl.h>

namespace {

using namespace Halvard::Orv;
using Render::ModelGeometry;
using Viewer::CameraControl;

/// The corners of a cube of edge 2 around (10, 0, 0).
ModelGeometry cube()
{
    ModelGeometry geometry;
    for (int corner = 0; corner < 8; ++corner) {
        const auto side = [corner](int axis) { return corner >> axis & 1 ? 1.0f : -1.0f; };
        geometry.points.push_back(QVector3D(10 + side(0), side(1), side(2)));
        geometry.bounds.include(geometry.points.back());
    }
    return geometry;
}

class CameraControlTest : public ::testing::Test
{
protected:
    CameraControlTest()
    {
        camera.setGeometry(&geometry);
        camera.setViewSize({800, 600});
        camera.frame(0, 0);
    }

    QPointF seen(const QVector3D &point) { return camera.seenAt(point).value_or(QPointF(-1, -1)); }

    ModelGeometry geometry = cube();
    CameraControl camera;
};

void expectNear(const QPointF &seen, const QPointF &expected, double pixels = 0.01)
{
    EXPECT_NEAR(seen.x(), expected.x(), pixels);
    EXPECT_NEAR(seen.y(), expected.y(), pixels);
}

const QVector3D Front = {10.5f, 0.25f, 1};

TEST_F(CameraControlTest, FramesAsTheCommandLineDoes)
{
    EXPECT_TRUE(camera.isFramed());
    const Render::Camera framed = Render::frameModel(geometry, {0, 0}, 800.0 / 600);
    EXPECT_EQ(camera.camera().view, framed.view);
    EXPECT_EQ(camera.camera().projection, framed.projection);
}

TEST_F(CameraControlTest, APoseThatIsLeftAsItIsShowsTheSame)
{
    const QPointF framed = seen(Front);
    camera.orbit(0, 0);
    EXPECT_FALSE(camera.isFramed());
    expectNear(seen(Front), framed);
}

TEST_F(CameraControlTest, OrbitsAroundTheTarget)
{
    const Render::ViewPose before = camera.pose();
    const QVector3D target(float(before.target.x), float(before.target.y), float(before.target.z));
    expectNear(seen(target), {400, 300});
    camera.orbit(75, 30);
    expectNear(seen(target), {400, 300});
    EXPECT_EQ(camera.pose().angles.azimuth, 75);
    EXPECT_EQ(camera.pose().angles.elevation, 30);
    EXPECT_EQ(camera.pose().distance, before.distance);
}

TEST_F(CameraControlTest, StopsStraightAboveAndBelow)
{
    camera.orbit(0, 1000);
    EXPECT_EQ(camera.pose().angles.elevation, 90);
    camera.orbit(0, -1000);
    EXPECT_EQ(camera.pose().angles.elevation, -90);
}

TEST_F(CameraControlTest, AFullTurnIsNone)
{
    camera.orbit(350, 0);
    camera.orbit(10, 0);
    EXPECT_EQ(camera.pose().angles.azimuth, 0);
}

TEST_F(CameraControlTest, PansWhatLiesUnderThePointer)
{
    camera.orbit(0, 0);
    const Render::ViewPose pose = camera.pose();
    const QVector3D target(float(pose.target.x), float(pose.target.y), float(pose.target.z));
    camera.pan({400, 300}, {470, 260});
    expectNear(seen(target), {470, 260});
}

TEST_F(CameraControlTest, ZoomsTowardsThePointer)
{
    // In the plane of the target, which for a model seen from the front has its z.
    const Render::ViewPose pose = camera.pose();
    const QVector3D point(10.5f, 0.25f, float(pose.target.z));
    const QPointF pointer = seen(point);
    camera.zoom(3, pointer);
    expectNear(seen(point), pointer);
    EXPECT_NEAR(camera.pose().distance, pose.distance / 3, 1e-9);
    camera.zoom(1.0 / 3, pointer);
    expectNear(seen(point), pointer);
    EXPECT_NEAR(camera.pose().target.x, pose.target.x, 1e-9);
}

TEST_F(CameraControlTest, NeitherTouchesNorLosesTheModel)
{
    for (int i = 0; i < 1000; ++i)
        camera.zoom(10, {123, 45});
    EXPECT_GT(camera.pose().distance, 0);
    EXPECT_TRUE(std::isfinite(camera.pose().target.x));
    for (int i = 0; i < 1000; ++i)
        camera.zoom(0.1, {123, 45});
    EXPECT_LT(camera.pose().distance, 1e4);
    EXPECT_TRUE(camera.seenAt(Front).has_value());
}

TEST_F(CameraControlTest, FliesToAFaceOfAnySize)
{
    camera.orbit(40, 25);
    struct
    {
        const char *name;
        std::vector<QVector3D> corners;
    } const rows[] = {
        {"a face", {{9, -1, 1}, {11, -1, 1}, {11, 1, 1}, {9, 1, 1}}},
        {"a sliver", {{9, 0, 1}, {11, 0, 1}}},
        {"a point", {{11, 1, 1}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        camera.flyTo(row.corners);
        Render::Bounds bounds;
        for (const QVector3D &corner : row.corners)
            bounds.include(corner);
        expectNear(seen(bounds.centre()), {400, 300});
        for (const QVector3D &corner : row.corners) {
            const QPointF pixel = seen(corner);
            EXPECT_TRUE(QRectF(0, 0, 800, 600).contains(pixel)) << pixel.x() << ", " << pixel.y();
        }
        EXPECT_EQ(camera.pose().angles.azimuth, 40);
    }
}

TEST_F(CameraControlTest, StaysWhereThereIsNowhereToFly)
{
    const double distance = camera.pose().distance;
    camera.flyTo({});
    camera.flyTo({QVector3D(float(qQNaN()), 0, 0)});
    EXPECT_TRUE(camera.isFramed());
    EXPECT_EQ(camera.pose().distance, distance);
}

TEST_F(CameraControlTest, AnotherUpAxisFramesAgain)
{
    camera.orbit(10, 10);
    camera.setUpAxis(Render::UpAxis::Z);
    EXPECT_TRUE(camera.isFramed());
    EXPECT_EQ(camera.camera().up, QVector3D(0, 0, 1));
}

} // namespace
