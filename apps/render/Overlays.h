/// \file
/// What is drawn over a model: the grid on the ground, the axes, and marked faces.
#pragma once

#include "Camera.h"
#include "LineDrawer.h"

#include <QtCore/QSize>

#include <vector>

namespace Halvard::Orv::Render {

class Bounds;

/// The distance between the lines of the grid, in the model's units: 1, 2 or 5 times a power of ten,
/// some six of them to the model.
double gridSpacing(const Bounds &bounds);

/// A grid at the foot of the model, square to the axis that points up, with lines at multiples of
/// gridSpacing(). Those through zero have the colours of the axes.
/// \param camera whose space the lines are in.
/// \param background the colour at the bottom of the picture: the lines stand out from it.
/// \param view receives how they are to be seen.
std::vector<Line> gridLines(const Bounds &bounds, const Camera &camera, UpAxis up,
                            const QColor &background, LineView &view);

/// The directions of x (red), y (green) and z (blue) in the lower left corner, in clip space.
std::vector<Line> axisLines(const Camera &camera, const QSize &picture);

/// The edges and the corners of a face, whether it gives triangles or not.
/// \param corners in the model; those that are not finite are left out.
std::vector<Line> markLines(const std::vector<QVector3D> &corners, const Camera &camera,
                            const QSize &picture);

} // namespace Halvard::Orv::Render
