/// \file
/// The planar triangulation behind Triangulate2D(), with scratch memory that a
/// caller of many faces keeps.
#pragma once

#include "Triangles/Ears/BlockerSearch.h"
#include "Triangles/Ears/EarQueue.h"

#include <OrvModel/Triangulate2D.h>

#include <QtCore/QVector>
#include <QtGui/QVector2D>

namespace Halvard::Orv {

/// Clips ears as Triangulate2D() has it, in close to linear time.
///
/// What is defined as two loops over all corners is looked up instead: the sharpest
/// ear in an EarQueue, the corners that may block one by a BlockerSearch.
class EarClipping
{
public:
    /// As Triangulate2D().
    /// \param triangles none when the polygon cannot be triangulated.
    void triangulate(int count, QVector2D const *points, QVector<int> &triangles, bool clockwise);

    /// Says nothing of polygons that cannot be triangulated: the caller does, by warn(), when
    /// their turn comes.
    void setQuiet(bool isQuiet) { _isQuiet = isQuiet; }
    /// The warning of a polygon of `count` corners that cannot be triangulated.
    static void warn(int count);

private:
    void makeRing(int count, bool clockwise);
    void evaluate(int index);
    float cosineInQueue(int index) const;
    void clip(int ear, QVector<int> &triangles);

    QVector2D const *_points = nullptr;
    std::vector<Vertex> _ring;
    EarQueue _queue;
    BlockerSearch _blockers;
    bool _isQuiet = false;
};

} // namespace Halvard::Orv
