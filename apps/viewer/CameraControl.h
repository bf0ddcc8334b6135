/// \file
/// How the camera of a window moves.
#pragma once

#include <render/Camera.h>
#include <render/ModelGeometry.h>

#include <QtCore/QPointF>
#include <QtCore/QSizeF>

#include <optional>

namespace Halvard::Orv::Viewer {

/// The camera of a window: framed around the model, as `orv render` frames it, until somebody moves
/// it. Knows nothing of events and of OpenGL.
class CameraControl
{
public:
    /// Takes another model, and frames it where the camera was framed, or there was none.
    void setGeometry(const Render::ModelGeometry *geometry);

    /// The size of the view, in any unit; that of the points below.
    void setViewSize(const QSizeF &size);
    QSizeF viewSize() const { return _size; }

    /// The whole model, from where the camera looks.
    void frame();
    /// The same from a direction.
    void frame(double azimuth, double elevation);
    void setUpAxis(Render::UpAxis up);
    Render::UpAxis upAxis() const { return _angles.up; }

    /// Turns round the target. \param degrees to the right and upwards.
    void orbit(double azimuth, double elevation);
    /// What lies under `from` at the target's distance comes to lie under `to`.
    void pan(const QPointF &from, const QPointF &to);
    /// Comes nearer by a factor above 1, goes away by one below. What lies under `pointer` at the
    /// target's distance stays there.
    void zoom(double factor, const QPointF &pointer);

    /// Goes to where these points, the corners of a face for example, are in the middle and fill a
    /// good part of the view, from where the camera looks. Without points it stays.
    void flyTo(const std::vector<QVector3D> &points);

    /// Whether frame() was the last to move the camera.
    bool isFramed() const { return !_free; }
    Render::ViewPose pose() const;
    Render::Camera camera() const { return camera(_size); }
    /// The same for a picture of another size. A camera that is not framed keeps its distance.
    Render::Camera camera(const QSizeF &size) const;

    /// Where a point of the model is seen; nothing for one behind the camera.
    std::optional<QPointF> seenAt(const QVector3D &point) const;

private:
    double aspect(const QSizeF &size) const;
    void goTo(const Render::ViewPose &pose);
    QPointF offsetAtTarget(const QPointF &point, double distance) const;
    void shift(Render::ViewPose &pose, double right, double up) const;
    const Render::ModelGeometry &geometry() const;

    const Render::ModelGeometry *_geometry = nullptr;
    QSizeF _size = {1, 1};
    Render::ViewAngles _angles;
    /// Nothing while framed.
    std::optional<Render::ViewPose> _free;
};

} // namespace Halvard::Orv::Viewer
