#include "Triangles/Ears/RingBoxes.h"

#include "Triangles/Ears/OrientedBox.h"

#include <algorithm>
#include <numeric>

namespace Halvard::Orv {

namespace {

/// How many points tell how to split a node. Only speed depends on it.
constexpr ptrdiff_t SampleSize = 32;

/// A coordinate of points, by number; of equal ones the lower number comes first.
class AlongAxis
{
public:
    AlongAxis(const QVector2D *points, bool isVertical) : _points(points), _isVertical(isVertical)
    {}

    float at(int i) const { return _isVertical ? _points[i].y() : _points[i].x(); }

    bool operator()(int first, int second) const
    {
        return at(first) < at(second) || (at(first) == at(second) && first < second);
    }

private:
    const QVector2D *_points;
    bool _isVertical;
};

/// The axis along which the points extend farther.
AlongAxis longerAxis(const QVector2D *points, const int *first, const int *last)
{
    const ptrdiff_t step = std::max<ptrdiff_t>(1, (last - first) / SampleSize);
    QVector2D low = points[*first];
    QVector2D high = low;
    for (ptrdiff_t i = 0; i < last - first; i += step) {
        const QVector2D point = points[first[i]];
        low = {std::min(low.x(), point.x()), std::min(low.y(), point.y())};
        high = {std::max(high.x(), point.x()), std::max(high.y(), point.y())};
    }
    return {points, high.y() - low.y() > high.x() - low.x()};
}

float sizeOf(const OrientedBox &box)
{
    return box.along + box.across;
}

/// What a way to split a node would give, from a sample of its points.
struct Halves
{
    /// How often a triangle in the one half would meet the other.
    int meetings;
    /// Extents of the two boxes.
    float size;
};

/// The first points of the ring and the last. Points of one half lie in the box of
/// the other.
Halves halvesInRingOrder(const QVector2D *points, const int *first, const int *middle,
                         const int *last)
{
    const ptrdiff_t step = std::max<ptrdiff_t>(1, (last - first) / SampleSize);
    const OrientedBox firstBox = OrientedBox::around(points, first, middle, step);
    const OrientedBox secondBox = OrientedBox::around(points, middle, last, step);
    int strays = 0;
    for (ptrdiff_t i = 0; i < middle - first; i += step)
        strays += secondBox.holds(points[first[i]]) ? 1 : 0;
    for (ptrdiff_t i = 0; i < last - middle; i += step)
        strays += firstBox.holds(points[middle[i]]) ? 1 : 0;
    return {strays, sizeOf(firstBox) + sizeOf(secondBox)};
}

/// The lower points along an axis and the higher ones. Neighbours in the ring are
/// parted.
Halves halvesInSpace(const QVector2D *points, const AlongAxis &axis, const int *first,
                     const int *last)
{
    const ptrdiff_t count = last - first;
    const ptrdiff_t step = std::max<ptrdiff_t>(1, count / SampleSize);
    int sample[2 * SampleSize];
    int *sampleEnd = sample;
    for (ptrdiff_t i = 0; i < count; i += step)
        *sampleEnd++ = first[i];
    int *const median = sample + (sampleEnd - sample) / 2;
    std::nth_element(sample, median, sampleEnd, axis);
    int parted = 0;
    for (ptrdiff_t i = 0; i + 1 < count; i += step) {
        if (first[i + 1] == first[i] + 1 && axis(first[i], *median) != axis(first[i + 1], *median))
            ++parted;
    }
    return {parted, sizeOf(OrientedBox::around(points, sample, median)) +
                        sizeOf(OrientedBox::around(points, median, sampleEnd))};
}

} // namespace

void RingBoxes::build(const std::vector<QVector2D> &points)
{
    _points = points.data();
    _order.resize(points.size());
    std::iota(_order.begin(), _order.end(), 0);
    _nodes.clear();
    addNode(_order.data(), _order.data() + _order.size());
}

/// Children are the quarters of the points, or halves where these are leaves already.
int RingBoxes::addNode(int *first, int *last)
{
    const int number = static_cast<int>(_nodes.size());
    _nodes.emplace_back();
    int *const middle = split(first, last);
    for (const auto &[from, to] : {std::pair(first, middle), std::pair(middle, last)}) {
        if (to - from > LeafSize) {
            int *const quarter = split(from, to);
            addChild(number, from, quarter);
            addChild(number, quarter, to);
        } else if (from != to) {
            addChild(number, from, to);
        }
    }
    return number;
}

void RingBoxes::addChild(int parent, int *first, int *last)
{
    const bool isLeaf = last - first <= LeafSize;
    const int leaf = static_cast<int>((first - _order.data()) / LeafSize);
    const OrientedBox box = OrientedBox::around(_points, first, last);
    const int child = isLeaf ? ~leaf : addNode(first, last);
    Node &node = _nodes[static_cast<size_t>(parent)];
    const int lane = node.childCount++;
    node.children[lane] = child;
    node.boxes.centreX[lane] = box.centre.x();
    node.boxes.centreY[lane] = box.centre.y();
    node.boxes.axisX[lane] = box.axis.x();
    node.boxes.axisY[lane] = box.axis.y();
    node.boxes.along[lane] = box.along;
    node.boxes.across[lane] = box.across;
}

/// Parts the points into two halves of whole leaves, each in ring order. In ring
/// order there is nothing to move. In space it has to be worth it: fewer meetings, or
/// by far smaller boxes, which lines from afar miss.
int *RingBoxes::split(int *first, int *last)
{
    constexpr float BySize = 4.0f;
    const ptrdiff_t half = (last - first + 1) / 2;
    int *const middle =
        first + std::min<ptrdiff_t>(last - first, (half + LeafSize - 1) / LeafSize * LeafSize);
    if (middle == last)
        return middle;
    const AlongAxis axis = longerAxis(_points, first, last);
    const Halves inRingOrder = halvesInRingOrder(_points, first, middle, last);
    const Halves inSpace = halvesInSpace(_points, axis, first, last);
    if (inRingOrder.meetings <= inSpace.meetings && inRingOrder.size <= BySize * inSpace.size)
        return middle;
    _sorted.assign(first, last);
    const auto pivot = _sorted.begin() + (middle - first);
    std::nth_element(_sorted.begin(), pivot, _sorted.end(), axis);
    const int firstOfSecond = *pivot;
    std::stable_partition(first, last, [&](int i) { return axis(i, firstOfSecond); });
    return middle;
}

} // namespace Halvard::Orv
