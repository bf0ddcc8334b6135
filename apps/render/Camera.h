/// \file
/// From where a model is looked at.
#pragma once

#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

namespace Halvard::Orv::Render {

class Bounds;
struct ModelGeometry;

/// Which axis of a model points up.
enum class UpAxis
{
    X,
    Y,
    Z
};

/// The direction from which to look, in degrees. Azimuth 0 looks with +y up from +z towards
/// -z, and grows towards +x; elevation 90 looks straight down. With +z up azimuth 0 looks
/// from -y and grows towards +x; with +x up, from +z and towards -y.
struct ViewAngles
{
    double azimuth = 30;
    double elevation = 20;
    UpAxis up = UpAxis::Y;
};

/// A point of a model, or a direction in it. In double: parts of a model far from the origin lie
/// closer than floats can tell.
struct Place
{
    double x = 0;
    double y = 0;
    double z = 0;
};

/// Where to look from: at `target`, from `distance` away, both in the model's units.
struct ViewPose
{
    ViewAngles angles;
    Place target;
    double distance = 1; ///< above 0
};

/// The camera's axes in the model, of length 1; `back` points to the camera.
struct ViewAxes
{
    Place right;
    Place up;
    Place back;
};

/// From the angles alone, so that straight up and down are no special cases.
ViewAxes viewAxes(const ViewAngles &angles);

/// Half the width and half the height that is seen at a distance of 1.
struct ViewSlopes
{
    double x;
    double y;
};

/// \param aspect width of the picture divided by its height, above 0.
ViewSlopes viewSlopes(double aspect);

/// A perspective camera.
///
/// Vertices go through a space of their own first, in which the model lies around
/// the origin with a radius of 1: `(vertex - centre) * rootScale * rootScale`. So
/// models of a millionth and of a million units, near the origin and far away,
/// have the same distances and depths. (The scale is applied as two factors, since
/// that of the largest and smallest models lies outside the floats.)
struct Camera
{
    QVector3D centre;
    float rootScale = 1;
    /// Away from the ground, in the model.
    QVector3D up = {0, 1, 0};
    QMatrix4x4 view;
    QMatrix4x4 projection;
};

/// A camera that looks from `angles` and is as near as it can be with all of the
/// model in the picture, but for a narrow margin. The nearest and farthest vertex
/// lie just inside the clipping planes.
///
/// \param geometry as readGeometry() gives it. An empty one, and a single point,
///        get some camera.
/// \param aspect width of the picture divided by its height, above 0.
Camera frameModel(const ModelGeometry &geometry, const ViewAngles &angles, double aspect);

/// Where the camera of frameModel() is. Its target lies in the plane through the middle of the
/// bounds.
ViewPose framingPose(const ModelGeometry &geometry, const ViewAngles &angles, double aspect);

/// A camera at a place of the caller's choice. The clipping planes take in all of the model that
/// lies before it, but for what is so near that the depths of the rest would suffer.
///
/// \param bounds of the model.
Camera cameraAt(const ViewPose &pose, const Bounds &bounds, double aspect);

/// The unit in which a camera works: the radius of what it looks at; 1 for a model too small to
/// have one.
double viewUnit(const Bounds &bounds);

} // namespace Halvard::Orv::Render
