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

struct Vector
{
    double x;
    double y;
    double z;
};

double dot(const Vector &a, const Vector &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// The camera's axes; `back` points from the model to the camera.
struct Axes
{
    Vector right;
    Vector up;
    Vector back;
};

/// A direction of a model with +y up in one with another axis up: turned by a right angle.
Vector turned(const Vector &v, UpAxis up)
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

/// From the angles alone, so that straight up and down are no special cases.
Axes axesOf(const ViewAngles &angles)
{
    const double sinA = std::sin(radians(angles.azimuth));
    const double cosA = std::cos(radians(angles.azimuth));
    const double sinE = std::sin(radians(angles.elevation));
    const double cosE = std::cos(radians(angles.elevation));
    const Vector right = {cosA, 0, -sinA};
    const Vector up = {-sinA * sinE, cosE, -cosA * sinE};
    const Vector back = {sinA * cosE, sinE, cosA * cosE};
    return {turned(right, angles.up), turned(up, angles.up), turned(back, angles.up)};
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
Reach reachOf(const ModelGeometry &geometry, const Axes &axes, double radius, double slopeX,
              double slopeY)
{
    const QVector3D centre = geometry.bounds.centre();
    Reach reach;
    for (const QVector3D &point : geometry.points) {
        const Vector p = {(double(point.x()) - double(centre.x())) / radius,
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
QMatrix4x4 viewMatrix(const Axes &axes, double x, double y, double z)
{
    const auto row = [](const Vector &axis, double offset) {
        return QVector4D(float(axis.x), float(axis.y), float(axis.z), float(-offset));
    };
    QMatrix4x4 view;
    view.setRow(0, row(axes.right, x));
    view.setRow(1, row(axes.up, y));
    view.setRow(2, row(axes.back, z));
    return view;
}

} // namespace

Camera frameModel(const ModelGeometry &geometry, const ViewAngles &angles, double aspect)
{
    // Below the smallest normal float a model is a point to the GPU.
    const double extent = geometry.bounds.radius();
    const double radius = extent >= double(std::numeric_limits<float>::min()) ? extent : 1;
    const double slope = std::tan(radians(FieldOfViewDegrees / 2));
    const double slopeX = slope * std::max(aspect, 1.0);
    const double slopeY = slope * std::max(1 / aspect, 1.0);
    const double usedX = slopeX * (1 - 2 * Margin);
    const double usedY = slopeY * (1 - 2 * Margin);

    const Axes axes = axesOf(angles);
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

    // A little room, lest rounding cuts off the outermost vertices.
    const double nearPlane = (z - reach.nearest) * 0.98;
    const double farPlane = (z - reach.farthest) * 1.02;

    Camera camera;
    const Vector upwards = turned({0, 1, 0}, angles.up);
    camera.up = QVector3D(float(upwards.x), float(upwards.y), float(upwards.z));
    camera.centre = geometry.bounds.centre();
    camera.rootScale = float(1 / std::sqrt(radius));
    camera.view = viewMatrix(axes, x, y, z);
    camera.projection.frustum(float(-slopeX * nearPlane), float(slopeX * nearPlane),
                              float(-slopeY * nearPlane), float(slopeY * nearPlane),
                              float(nearPlane), float(farPlane));
    return camera;
}

} // namespace Halvard::Orv::Render
