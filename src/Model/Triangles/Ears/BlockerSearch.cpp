#include "Triangles/Ears/BlockerSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Halvard::Orv {

namespace {

constexpr int NoSlot = -1;
constexpr int Lanes = 4;
/// Below this many corners all are looked at, which takes less time than boxes do.
constexpr int FewCorners = 256;
constexpr float Gone = std::numeric_limits<float>::quiet_NaN();

bool isFinite(QVector2D point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

void BlockerSearch::reset(QVector2D const *points, int count)
{
    _points = points;
    _corners.clear();
    _corners.reserve(static_cast<size_t>(count));
    _states.assign(static_cast<size_t>(count), {NoSlot, -1});
    // Corners that are not finite never block, see TriangleReach.
    for (int corner = 0; corner < count; ++corner) {
        if (isFinite(points[corner])) {
            _corners.push_back(corner);
            state(corner).slot = 0;
        }
    }
    place();
}

/// Gives all active corners new slots.
void BlockerSearch::place()
{
    const auto isGone = [this](int corner) { return state(corner).slot == NoSlot; };
    _corners.erase(std::remove_if(_corners.begin(), _corners.end(), isGone), _corners.end());
    _activeCount = static_cast<int>(_corners.size());
    _hasBoxes = _activeCount >= FewCorners;
    if (_hasBoxes) {
        _placed.clear();
        _placed.reserve(_corners.size());
        for (const int corner : _corners)
            _placed.push_back(_points[corner]);
        _boxes.build(_placed);
    }
    const size_t slotCount =
        (_corners.size() + RingBoxes::LeafSize - 1) / RingBoxes::LeafSize * RingBoxes::LeafSize;
    _x.assign(slotCount, Gone);
    _y.assign(slotCount, Gone);
    _cornerAt.resize(slotCount);
    for (size_t slot = 0; slot < _corners.size(); ++slot) {
        const size_t number = _hasBoxes ? static_cast<size_t>(_boxes.order()[slot]) : slot;
        const int corner = _corners[number];
        _x[slot] = _points[corner].x();
        _y[slot] = _points[corner].y();
        _cornerAt[slot] = corner;
        state(corner).slot = static_cast<int>(slot);
    }
}

void BlockerSearch::remove(int corner)
{
    int &slot = state(corner).slot;
    if (slot == NoSlot)
        return;
    _x[static_cast<size_t>(slot)] = Gone;
    slot = NoSlot;
    --_activeCount;
    if (_activeCount > Lanes && 2 * _activeCount < static_cast<int>(_corners.size()))
        place();
}

bool BlockerSearch::isBlocked(int corner, const CornerTriangle &triangle)
{
    const int last = state(corner).lastBlocker;
    if (last >= 0 && state(last).slot != NoSlot && triangle.isBlockedBy(_points[last]))
        return true;

    const TriangleReach reach(triangle);
    if (_hasBoxes) {
        // An edge too long for a float has no direction, and nothing is inside of it.
        const QVector2D opposite = triangle.edge(1).direction;
        if (std::isnan(opposite.x()) || std::isnan(opposite.y()))
            return false;
        return _boxes.anyLeaf(triangle, reach, [&](int slot) {
            return isBlockedBySome(corner, triangle, reach, slot) ||
                   isBlockedBySome(corner, triangle, reach, slot + Lanes);
        });
    }
    for (int slot = 0; slot < static_cast<int>(_x.size()); slot += Lanes) {
        if (isBlockedBySome(corner, triangle, reach, slot))
            return true;
    }
    return false;
}

/// Whether one of the corners in four slots blocks.
bool BlockerSearch::isBlockedBySome(int corner, const CornerTriangle &triangle,
                                    const TriangleReach &reach, int slot)
{
    const size_t at = static_cast<size_t>(slot);
    unsigned within = reach.pointsWithin(loadFour(&_x[at]), loadFour(&_y[at]));
    for (size_t lane = 0; within != 0; ++lane, within >>= 1) {
        if ((within & 1u) == 0 || !triangle.isBlockedBy({_x[at + lane], _y[at + lane]}))
            continue;
        state(corner).lastBlocker = _cornerAt[at + lane];
        return true;
    }
    return false;
}

} // namespace Halvard::Orv
