#include "Camera.h"

#include "ModelGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Halvard::Orv::Render {

namespace {

/// Of the picture's shorter side.
constexpr double FieldOfViewDegrees = 32;
/// The part of the picture, on each side, that framing leaves free.
constexpr double Margin = 0.06;
/// From the camera to the nearest vertex at least, in model radii.
constexpr double MinimumDistance = 0.01;

double radians(double degrees)
{
    return degrees * (3.14159265358979323846 / 180);
}

double dot(const Place &a, const Place &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// A direction of a model with +y up in one with another axis up: turned by a right angle.
Place turned(const Place &v, UpAxis up)
{
    switch (up) {
    case UpAxis::X:
        return {v.y, -v.x, v.z};
    case UpAxis::Y:
        return v;
    case UpAxis::Z:
        return {v.x, -v.z, v.y};
    }
    return v;
}

/// How far the model reaches along each side of the view pyramid and in depth.
struct Reach
{
    double left = -std::numeric_limits<double>::infinity();
    double right = left;
    double bottom = left;
    double top = left;
    double nearest = left;
    double farthest = -left;
};

/// `slopeX`, `slopeY`: half the width and height that is seen at a distance of 1.
/// A point (x, y, z) is seen by a camera at (cx, cy, cz) when
/// |x - cx| <= slopeX * (cz - z) and the same for y, that is, when
/// x + slopeX * z <= slopeX * cz + cx and -x + slopeX * z <= slopeX * cz - cx.
/// The maxima of the left sides over all points say where the camera can stand.
Reach reachOf(const ModelGeometry &geometry, const ViewAxes &axes, double radius, double slopeX,
              double slopeY)
{
    const QVector3D centre = geometry.bounds.centre();
    Reach reach;
    for (const QVector3D &point : geometry.points) {
        const Place p = {(double(point.x()) - double(centre.x())) / radius,
                         (double(point.y()) - double(centre.y())) / radius,
                         (double(point.z()) - double(centre.z())) / radius};
        const double x = dot(p, axes.right);
        const double y = dot(p, axes.up);
        const double z = dot(p, axes.back);
        reach.left = std::max(reach.left, slopeX * z - x);
        reach.right = std::max(reach.right, slopeX * z + x);
        reach.bottom = std::max(reach.bottom, slopeY * z - y);
        reach.top = std::max(reach.top, slopeY * z + y);
        reach.nearest = std::max(reach.nearest, z);
        reach.farthest = std::min(reach.farthest, z);
    }
    return reach;
}

/// World to camera: the axes as rows, then the camera's place taken off.
QMatrix4x4 viewMatrix(const ViewAxes &axes, double x, double y, double z)
{
    const auto row = [](const Place &axis, double offset) {
        return QVector4D(float(axis.x), float(axis.y), float(axis.z), float(-offset));
    };
    QMatrix4x4 view;
    view.setRow(0, row(axes.right, x));
    view.setRow(1, row(axes.up, y));
    view.setRow(2, row(axes.back, z));
    return view;
}

/// A framing in units of the model's radius, along the camera's axes from the middle of the bounds.
struct Framing
{
    double x;
    double y;
    double z;
    Reach reach;
};

Framing framingOf(const ModelGeometry &geometry, const ViewAxes &axes, double radius,
                  const ViewSlopes &slopes)
{
    const double usedX = slopes.x * (1 - 2 * Margin);
    const double usedY = slopes.y * (1 - 2 * Margin);
    Reach reach;
    if (geometry.points.empty())
        reach = {0, 0, 0, 0, 0, 0};
    else
        reach = reachOf(geometry, axes, radius, usedX, usedY);

    const double distanceX = (reach.left + reach.right) / (2 * usedX);
    const double distanceY = (reach.bottom + reach.top) / (2 * usedY);
    const double x = (reach.right - reach.left) / 2;
    const double y = (reach.top - reach.bottom) / 2;
    const double z = std::max({distanceX, distanceY, reach.nearest + MinimumDistance});
    return {x, y, z, reach};
}

/// What does not depend on where the camera is.
Camera cameraOf(const Bounds &bounds, UpAxis up)
{
    Camera camera;
    const Place upwards = turned({0, 1, 0}, up);
    camera.up = QVector3D(float(upwards.x), float(upwards.y), float(upwards.z));
    camera.centre = bounds.centre();
    camera.rootScale = float(1 / std::sqrt(viewUnit(bounds)));
    return camera;
}

void setDepths(Camera &camera, const ViewSlopes &slopes, double nearPlane, double farPlane)
{
    camera.projection.frustum(float(-slopes.x * nearPlane), float(slopes.x * nearPlane),
                              float(-slopes.y * nearPlane), float(slopes.y * nearPlane),
                              float(nearPlane), float(farPlane));
}

} // namespace

ViewAxes viewAxes(const ViewAngles &angles)
{
    const double sinA = std::sin(radians(angles.azimuth));
    const double cosA = std::cos(radians(angles.azimuth));
    const double sinE = std::sin(radians(angles.elevation));
    const double cosE = std::cos(radians(angles.elevation));
    const Place right = {cosA, 0, -sinA};
    const Place up = {-sinA * sinE, cosE, -cosA * sinE};
    const Place back = {sinA * cosE, sinE, cosA * cosE};
    return {turned(right, angles.up), turned(up, angles.up), turned(back, angles.up)};
}

ViewSlopes viewSlopes(double aspect)
{
    const double slope = std::tan(radians(FieldOfViewDegrees / 2));
    return {slope * std::max(aspect, 1.0), slope * std::max(1 / aspect, 1.0)};
}

double viewUnit(const Bounds &bounds)
{
    // Below the smallest normal float a model is a point to the GPU.
    const double extent = bounds.radius();
    return extent >= double(std::numeric_limits<float>::min()) ? extent : 1;
}

Camera frameModel(const ModelGeometry &geometry, const ViewAngles &angles, double aspect)
{
    const ViewSlopes slopes = viewSlopes(aspect);
    const ViewAxes axes = viewAxes(angles);
    const Framing framing = framingOf(geometry, axes, viewUnit(geometry.bounds), slopes);
    Camera camera = cameraOf(geometry.bounds, angles.up);
    camera.view = viewMatrix(axes, framing.x, framing.y, framing.z);
    // A little room, lest rounding cuts off the outermost vertices.
    setDepths(camera, slopes, (framing.z - framing.reach.nearest) * 0.98,
              (framing.z - framing.reach.farthest) * 1.02);
    return camera;
}

ViewPose framingPose(const ModelGeometry &geometry, const ViewAngles &angles, double aspect)
{
    const double unit = viewUnit(geometry.bounds);
    const ViewAxes axes = viewAxes(angles);
    const Framing framing = framingOf(geometry, axes, unit, viewSlopes(aspect));
    const QVector3D centre = geometry.bounds.centre();
    const auto along = [&](double middle, double right, double up) {
        return middle + (framing.x * right + framing.y * up) * unit;
    };
    ViewPose pose;
    pose.angles = angles;
    pose.target = {along(double(centre.x()), axes.right.x, axes.up.x),
                   along(double(centre.y()), axes.right.y, axes.up.y),
                   along(double(centre.z()), axes.right.z, axes.up.z)};
    pose.distance = framing.z * unit;
    return pose;
}

Camera cameraAt(const ViewPose &pose, const Bounds &bounds, double aspect)
{
    // What is so near does not keep the rest from having depths of its own.
    constexpr double NearestOfFarthest = 1e-4;
    constexpr double NearestOfDistance = 0.05;
    const double unit = viewUnit(bounds);
    const ViewAxes axes = viewAxes(pose.angles);
    const QVector3D centre = bounds.centre();
    const auto fromCentre = [&](const Place &place) {
        return Place{(place.x - double(centre.x())) / unit, (place.y - double(centre.y())) / unit,
                     (place.z - double(centre.z())) / unit};
    };
    const Place target = fromCentre(pose.target);
    const double distance = pose.distance / unit;
    const double z = dot(target, axes.back) + distance;

    double nearest = -std::numeric_limits<double>::infinity();
    double farthest = -nearest;
    for (int corner = 0; corner < 8; ++corner) {
        const auto side = [&](int axis) {
            return double((corner >> axis & 1 ? bounds.maximum() : bounds.minimum())[axis]);
        };
        const double depth = dot(fromCentre({side(0), side(1), side(2)}), axes.back);
        nearest = std::max(nearest, depth);
        farthest = std::min(farthest, depth);
    }
    const double farPlane = std::max((z - farthest) * 1.02, distance);
    const double nearPlane = std::max(
        (z - nearest) * 0.98, std::min(farPlane * NearestOfFarthest, distance * NearestOfDistance));

    Camera camera = cameraOf(bounds, pose.angles.up);
    camera.view = viewMatrix(axes, dot(target, axes.right), dot(target, axes.up), z);
    setDepths(camera, viewSlopes(aspect), nearPlane, std::max(farPlane, nearPlane * 1.02));
    return camera;
}

} // namespace Halvard::Orv::Render
