// Ear clipping after G. H. Meisters, "Polygons have ears" (1975), always taking
// the sharpest ear.
#include "Triangles/Ears/EarClipping.h"

#include "Triangles/Ears/CornerEvaluation.h"

namespace Halvard::Orv {

namespace {

void appendTriangle(QVector<int> &triangles, int first, int second, int third)
{
    triangles.append(first);
    triangles.append(second);
    triangles.append(third);
}

/// Three and four corners: fixed tables, no geometry.
void appendFixedTriangles(int count, bool clockwise, QVector<int> &triangles)
{
    if (count == 3) {
        appendTriangle(triangles, 0, clockwise ? 2 : 1, clockwise ? 1 : 2);
        return;
    }
    appendTriangle(triangles, 0, clockwise ? 3 : 1, clockwise ? 1 : 3);
    appendTriangle(triangles, 1, clockwise ? 3 : 2, clockwise ? 2 : 3);
}

/// The three corners that clipping leaves.
void appendLastTriangle(const std::vector<Vertex> &ring, QVector<int> &triangles)
{
    for (size_t i = 0; i < ring.size(); ++i) {
        if (ring[i].isActive) {
            appendTriangle(triangles, ring[i].prev, static_cast<int>(i), ring[i].next);
            return;
        }
    }
}

} // namespace

void EarClipping::triangulate(int count, QVector2D const *points, QVector<int> &triangles,
                              bool clockwise)
{
    triangles.resize(0);
    if (count < 3) {
        if (!_isQuiet)
            warn(count);
        return;
    }
    if (count <= 4) {
        appendFixedTriangles(count, clockwise, triangles);
        return;
    }

    _points = points;
    makeRing(count, clockwise);
    triangles.reserve(3 * (count - 2));
    for (int clipped = 0; clipped < count - 3; ++clipped) {
        const int ear = _queue.sharpest();
        if (ear < 0) {
            if (!_isQuiet)
                warn(count);
            triangles.resize(0);
            return;
        }
        clip(ear, triangles);
    }
    appendLastTriangle(_ring, triangles);
}

void EarClipping::warn(int count)
{
    if (count < 3)
        qWarning("Cannot triangulate a polygon with fewer than 3 vertices");
    else
        qWarning("Unable to triangulate polygon.");
}

/// Links the corners into a ring that is walked counter-clockwise, and looks at each.
void EarClipping::makeRing(int count, bool clockwise)
{
    _ring.clear();
    _ring.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        const int after = i + 1 == count ? 0 : i + 1;
        const int before = i == 0 ? count - 1 : i - 1;
        _ring.push_back(
            {clockwise ? before : after, clockwise ? after : before, 0.0f, 0.0f, true, false});
    }
    _blockers.reset(_points, count);
    _queue.reset(count);
    for (int i = 0; i < count; ++i) {
        evaluate(i);
        _queue.load(i, cosineInQueue(i));
    }
    _queue.build();
}

void EarClipping::evaluate(int index)
{
    evaluateCorner(
        _ring[static_cast<size_t>(index)], _points, index,
        [&](const CornerTriangle &triangle) { return _blockers.isBlocked(index, triangle); });
}

float EarClipping::cosineInQueue(int index) const
{
    const Vertex &corner = _ring[static_cast<size_t>(index)];
    return corner.isEar ? corner.cosAngle : EarQueue::NoEar;
}

/// Emits the ear's triangle, unlinks it, and looks at its two neighbours anew. No
/// other corner is: an ear elsewhere that this one blocked stays blocked until a
/// neighbour of its own goes.
void EarClipping::clip(int ear, QVector<int> &triangles)
{
    Vertex &corner = _ring[static_cast<size_t>(ear)];
    appendTriangle(triangles, corner.prev, ear, corner.next);
    _ring[static_cast<size_t>(corner.prev)].next = corner.next;
    _ring[static_cast<size_t>(corner.next)].prev = corner.prev;
    corner.isActive = false;
    _blockers.remove(ear);
    _queue.remove(ear);
    for (const int neighbour : {corner.prev, corner.next}) {
        evaluate(neighbour);
        _queue.set(neighbour, cosineInQueue(neighbour));
    }
}

} // namespace Halvard::Orv
