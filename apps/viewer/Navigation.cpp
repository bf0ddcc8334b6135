#include "Navigation.h"

#include "CameraControl.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QNativeGestureEvent>
#include <QtGui/QWheelEvent>

#include <cmath>

namespace Halvard::Orv::Viewer {

namespace {

/// Across the shorter side of the view.
constexpr double DegreesAView = 180;
constexpr double DegreesAKey = 10;
constexpr double PartOfViewAKey = 0.08;
constexpr double ZoomAKey = 1.2;

QPointF middle(const CameraControl &camera)
{
    return {camera.viewSize().width() / 2, camera.viewSize().height() / 2};
}

} // namespace

bool Navigation::handle(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return press(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseMove:
        return move(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        return release(*static_cast<QMouseEvent *>(event));
    case QEvent::Wheel:
        return wheel(*static_cast<QWheelEvent *>(event));
    case QEvent::NativeGesture:
        return gesture(*static_cast<QNativeGestureEvent *>(event));
    case QEvent::KeyPress:
        return key(*static_cast<QKeyEvent *>(event));
    default:
        return false;
    }
}

bool Navigation::press(const QMouseEvent &event)
{
    if (_drag != Drag::None)
        return true; // the first button leads
    const bool isMoving = event.button() == Qt::MiddleButton || event.button() == Qt::RightButton ||
                          event.modifiers() & Qt::ShiftModifier;
    _drag = event.modifiers() & Qt::ControlModifier ? Drag::Zoom
            : isMoving                              ? Drag::Pan
                                                    : Drag::Orbit;
    _button = event.button();
    _start = _last = event.localPos();
    return true;
}

bool Navigation::move(const QMouseEvent &event)
{
    if (_drag == Drag::None)
        return false;
    const QPointF to = event.localPos();
    const QPointF by = to - _last;
    const double side = std::min(_camera.viewSize().width(), _camera.viewSize().height());
    switch (_drag) {
    case Drag::Orbit:
        // The model follows the pointer, as if it were turned by hand.
        _camera.orbit(-by.x() * DegreesAView / side, by.y() * DegreesAView / side);
        break;
    case Drag::Pan:
        _camera.pan(_last, to);
        break;
    case Drag::Zoom:
        _camera.zoom(std::exp(-3 * by.y() / side), _start);
        break;
    case Drag::None:
        break;
    }
    _last = to;
    return true;
}

bool Navigation::release(const QMouseEvent &event)
{
    if (_drag == Drag::None || event.button() != _button)
        return false;
    _drag = Drag::None;
    return true;
}

bool Navigation::wheel(const QWheelEvent &event)
{
    // A step of a wheel is 120; trackpads tell pixels.
    constexpr double PixelsAStep = 60;
    const double steps = event.pixelDelta().isNull() ? event.angleDelta().y() / 120.0
                                                     : event.pixelDelta().y() / PixelsAStep;
    if (steps == 0)
        return false;
    _camera.zoom(std::pow(ZoomAKey, steps), event.position());
    return true;
}

bool Navigation::gesture(const QNativeGestureEvent &event)
{
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    _camera.zoom(1 + event.value(), event.localPos());
    return true;
}

bool Navigation::key(const QKeyEvent &event)
{
    const auto turnOrMove = [this, &event](double x, double y) {
        if (event.modifiers() & Qt::ShiftModifier)
            _camera.pan(middle(_camera),
                        middle(_camera) + QPointF(x * _camera.viewSize().width(),
                                                  -y * _camera.viewSize().height()) *
                                              PartOfViewAKey);
        else
            _camera.orbit(x * DegreesAKey, y * DegreesAKey);
        return true;
    };
    switch (event.key()) {
    case Qt::Key_Left:
        return turnOrMove(-1, 0);
    case Qt::Key_Right:
        return turnOrMove(1, 0);
    case Qt::Key_Up:
        return turnOrMove(0, 1);
    case Qt::Key_Down:
        return turnOrMove(0, -1);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_PageUp:
        _camera.zoom(ZoomAKey, middle(_camera));
        return true;
    case Qt::Key_Minus:
    case Qt::Key_PageDown:
        _camera.zoom(1 / ZoomAKey, middle(_camera));
        return true;
    default:
        return false;
    }
}

} // namespace Halvard::Orv::Viewer
