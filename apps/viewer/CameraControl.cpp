#include "CameraControl.h"

#include <QtGui/QVector4D>

#include <algorithm>
#include <cmath>

namespace Halvard::Orv::Viewer {

using Render::Place;
using Render::ViewPose;

namespace {

/// In radii of the model. Beyond, there is nothing to see, and floats end.
constexpr double NearestDistance = 1e-5;
constexpr double FarthestDistance = 1e3;

/// From -180 to 180: turning on and on must not lose digits.
double normalized(double degrees)
{
    return std::remainder(degrees, 360);
}

Place moved(const Place &place, const Place &direction, double by)
{
    return {place.x + direction.x * by, place.y + direction.y * by, place.z + direction.z * by};
}

} // namespace

const Render::ModelGeometry &CameraControl::geometry() const
{
    static const Render::ModelGeometry none;
    return _geometry ? *_geometry : none;
}

void CameraControl::setGeometry(const Render::ModelGeometry *geometry)
{
    _geometry = geometry;
}

void CameraControl::setViewSize(const QSizeF &size)
{
    _size = size.expandedTo({1, 1});
}

double CameraControl::aspect(const QSizeF &size) const
{
    return size.width() / size.height();
}

void CameraControl::frame()
{
    _free.reset();
}

void CameraControl::frame(double azimuth, double elevation)
{
    _angles.azimuth = azimuth;
    _angles.elevation = elevation;
    frame();
}

void CameraControl::setUpAxis(Render::UpAxis up)
{
    _angles.up = up;
    frame();
}

ViewPose CameraControl::pose() const
{
    return _free ? *_free : Render::framingPose(geometry(), _angles, aspect(_size));
}

Render::Camera CameraControl::camera(const QSizeF &size) const
{
    return _free ? Render::cameraAt(*_free, geometry().bounds, aspect(size))
                 : Render::frameModel(geometry(), _angles, aspect(size));
}

void CameraControl::goTo(const ViewPose &pose)
{
    const double unit = Render::viewUnit(geometry().bounds);
    _free = pose;
    _free->distance = std::clamp(pose.distance, NearestDistance * unit, FarthestDistance * unit);
    _angles = pose.angles;
}

void CameraControl::orbit(double azimuth, double elevation)
{
    ViewPose next = pose();
    next.angles.azimuth = normalized(next.angles.azimuth + azimuth);
    next.angles.elevation = std::clamp(next.angles.elevation + elevation, -90.0, 90.0);
    goTo(next);
}

/// How far right of the target, and above it, a point of the view is, in the plane through it.
QPointF CameraControl::offsetAtTarget(const QPointF &point, double distance) const
{
    const Render::ViewSlopes slopes = Render::viewSlopes(aspect(_size));
    return {(2 * point.x() / _size.width() - 1) * slopes.x * distance,
            (1 - 2 * point.y() / _size.height()) * slopes.y * distance};
}

void CameraControl::shift(ViewPose &pose, double right, double up) const
{
    const Render::ViewAxes axes = Render::viewAxes(pose.angles);
    pose.target = moved(moved(pose.target, axes.right, right), axes.up, up);
}

void CameraControl::pan(const QPointF &from, const QPointF &to)
{
    ViewPose next = pose();
    const QPointF by = offsetAtTarget(from, next.distance) - offsetAtTarget(to, next.distance);
    shift(next, by.x(), by.y());
    goTo(next);
}

void CameraControl::zoom(double factor, const QPointF &pointer)
{
    const ViewPose before = pose();
    ViewPose next = before;
    next.distance /= factor;
    goTo(next); // which keeps the distance within bounds
    next.distance = _free->distance;
    const QPointF by =
        offsetAtTarget(pointer, before.distance) - offsetAtTarget(pointer, next.distance);
    shift(next, by.x(), by.y());
    goTo(next);
}

void CameraControl::flyTo(const std::vector<QVector3D> &points)
{
    constexpr double PartOfView = 0.3;
    // A face of no size has its surroundings about it.
    constexpr double LeastRadius = 0.01;
    Render::Bounds bounds;
    for (const QVector3D &point : points)
        bounds.include(point);
    if (bounds.isEmpty())
        return;
    const double radius =
        std::max(bounds.radius(), LeastRadius * Render::viewUnit(geometry().bounds));
    const Render::ViewSlopes slopes = Render::viewSlopes(aspect(_size));
    const QVector3D centre = bounds.centre();
    ViewPose next = pose();
    next.target = {double(centre.x()), double(centre.y()), double(centre.z())};
    // Large faces are no reason to go farther away than for the whole model.
    next.distance = std::min(radius / (PartOfView * std::min(slopes.x, slopes.y)),
                             Render::framingPose(geometry(), _angles, aspect(_size)).distance);
    goTo(next);
}

std::optional<QPointF> CameraControl::seenAt(const QVector3D &point) const
{
    const Render::Camera view = camera();
    const QVector3D position = (point - view.centre) * view.rootScale * view.rootScale;
    const QVector4D seen = view.projection * view.view * QVector4D(position, 1);
    if (seen.w() <= 0)
        return {};
    return QPointF((0.5 + 0.5 * double(seen.x() / seen.w())) * _size.width(),
                   (0.5 - 0.5 * double(seen.y() / seen.w())) * _size.height());
}

} // namespace Halvard::Orv::Viewer
