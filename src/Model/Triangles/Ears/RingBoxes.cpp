#include "Triangles/Ears/RingBoxes.h"

#include "Triangles/Ears/OrientedBox.h"

#include <QtCore/QtAlgorithms>

#include <algorithm>
#include <numeric>

namespace Halvard::Orv {

void RingBoxes::build(const std::vector<QVector2D> &points, const NodeSplit &split)
{
    _split = &split;
    _points = points.data();
    _order.resize(points.size());
    std::iota(_order.begin(), _order.end(), 0);
    _nodes.clear();
    addNode(_order.data(), _order.data() + _order.size());
    // Needed while building only.
    _points = nullptr;
    _split = nullptr;
}

/// Children are the quarters of the points, or halves where these are leaves already.
int RingBoxes::addNode(int *first, int *last)
{
    const int number = static_cast<int>(_nodes.size());
    _nodes.emplace_back();
    int *const middle = parted(first, last, false);
    for (const auto &[from, to] : {std::pair(first, middle), std::pair(middle, last)}) {
        if (to - from > LeafSize) {
            int *const quarter = parted(from, to, true);
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
    box.putInto(node.boxes, lane);
}

/// Parts the points into two halves of whole leaves, each in ring order.
int *RingBoxes::parted(int *first, int *last, bool isAcross)
{
    const ptrdiff_t half = (last - first + 1) / 2;
    int *const middle =
        first + std::min<ptrdiff_t>(last - first, (half + LeafSize - 1) / LeafSize * LeafSize);
    if (middle == last)
        return middle;
    const std::optional<AlongAxis> axis = (*_split)(_points, first, middle, last, isAcross);
    if (!axis)
        return middle;
    _sorted.assign(first, last);
    const auto pivot = _sorted.begin() + (middle - first);
    std::nth_element(_sorted.begin(), pivot, _sorted.end(), *axis);
    const int firstOfSecond = *pivot;
    std::stable_partition(first, last, [&](int i) { return (*axis)(i, firstOfSecond); });
    return middle;
}

/// Pushes children, the nearest last.
///
/// What blocks a triangle is most likely inside of it; the float comparisons also reach
/// far beyond the ends of a sliver.
int RingBoxes::push(const Node &node, unsigned children, Float4 distances, int *waiting, int count)
{
    unsigned nearest = qCountTrailingZeroBits(children);
    for (children &= children - 1; children != 0; children &= children - 1) {
        const unsigned child = qCountTrailingZeroBits(children);
        const bool isNearer = distances[child] < distances[nearest];
        waiting[count++] = node.children[isNearer ? nearest : child];
        nearest = isNearer ? child : nearest;
    }
    waiting[count++] = node.children[nearest];
    return count;
}

} // namespace Halvard::Orv
