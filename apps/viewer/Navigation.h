/// \file
/// Mouse, trackpad and keys move the camera.
#pragma once

#include <QtCore/QPointF>
#include <QtCore/Qt>

class QEvent;
class QKeyEvent;
class QMouseEvent;
class QNativeGestureEvent;
class QWheelEvent;

namespace Halvard::Orv::Viewer {

class CameraControl;

/// The conventions of the viewers that people know: drag to turn; with the middle or right button, or
/// with Shift, to move; with Ctrl, or by the wheel, to come nearer to the pointer.
class Navigation
{
public:
    explicit Navigation(CameraControl &camera) : _camera(camera) {}

    /// \return whether the event was for the camera, which then has moved or is about to.
    bool handle(QEvent *event);

private:
    bool press(const QMouseEvent &event);
    bool move(const QMouseEvent &event);
    bool release(const QMouseEvent &event);
    bool wheel(const QWheelEvent &event);
    bool gesture(const QNativeGestureEvent &event);
    bool key(const QKeyEvent &event);

    enum class Drag
    {
        None,
        Orbit,
        Pan,
        Zoom
    };

    CameraControl &_camera;
    Drag _drag = Drag::None;
    Qt::MouseButton _button = Qt::NoButton;
    QPointF _start;
    QPointF _last;
};

} // namespace Halvard::Orv::Viewer
