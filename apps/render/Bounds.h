/// \file
/// An axis-aligned box around points.
#pragma once

#include <QtGui/QVector3D>

namespace Halvard::Orv::Render {

/// The smallest box around the points included so far. Empty until the first.
class Bounds
{
public:
    bool isEmpty() const { return _empty; }

    /// A point with a coordinate that is not finite is left out: it cannot be drawn.
    /// \return whether it was taken.
    bool include(const QVector3D &point);
    /// An empty box adds nothing.
    void include(const Bounds &other);

    /// The lowest and the highest corner; zeros when empty.
    QVector3D minimum() const { return _minimum; }
    QVector3D maximum() const { return _maximum; }

    /// The middle; zeros when empty. Finite for all boxes.
    QVector3D centre() const;
    /// Half the diagonal; 0 when empty and for a single point. In double, since
    /// that of the largest boxes is no float any more.
    double radius() const;

private:
    QVector3D _minimum;
    QVector3D _maximum;
    bool _empty = true;
};

} // namespace Halvard::Orv::Render
