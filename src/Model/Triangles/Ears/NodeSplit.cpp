#include "Triangles/Ears/NodeSplit.h"

#include "Triangles/Ears/OrientedBox.h"
#include "Triangles/Ears/Sampling.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Halvard::Orv {

namespace {

/// How many points are looked at, about.
constexpr ptrdiff_t SampleSize = 32;

ptrdiff_t sampleStep(ptrdiff_t count)
{
    return std::max<ptrdiff_t>(1, count / SampleSize);
}

float sizeOf(const OrientedBox &box)
{
    return box.along + box.across;
}

float areaOf(const OrientedBox &box)
{
    return box.along * box.across;
}

/// Some of a node's points.
struct Sample
{
    Sample(const int *first, const int *last)
    {
        for (SampledNumbers i(sampleStep(last - first), last - first); !i.isAtEnd(); ++i)
            numbers[count++] = first[*i];
    }

    OrientedBox boxAround(const QVector2D *points) const
    {
        return OrientedBox::around(points, numbers, numbers + count);
    }

    int numbers[2 * SampleSize];
    int count = 0;
};

/// The first points of a ring and the last.
struct HalvesInRingOrder
{
    HalvesInRingOrder(const QVector2D *points, const int *first, const int *middle, const int *last)
    {
        const ptrdiff_t step = sampleStep(last - first);
        const OrientedBox firstBox = OrientedBox::around(points, first, middle, step);
        const OrientedBox secondBox = OrientedBox::around(points, middle, last, step);
        for (SampledNumbers i(step, middle - first); !i.isAtEnd(); ++i)
            strays += secondBox.holds(points[first[*i]]) ? 1 : 0;
        for (SampledNumbers i(step, last - middle); !i.isAtEnd(); ++i)
            strays += firstBox.holds(points[middle[*i]]) ? 1 : 0;
        size = sizeOf(firstBox) + sizeOf(secondBox);
    }

    /// Points of one half in the box of the other.
    int strays = 0;
    /// Extents of the two boxes.
    float size;
};

/// The lower points along an axis and the higher ones.
///
/// The points in the middle are left out of the boxes: where two arcs lie apart, a sample
/// has some more of the one, and these would make the box of the other as large as both.
struct HalvesInSpace
{
    HalvesInSpace(const QVector2D *points, QVector2D direction, Sample sample)
        : axis(points, direction)
    {
        std::pair<double, int> placed[2 * SampleSize];
        for (int i = 0; i < sample.count; ++i)
            placed[i] = {axis.at(sample.numbers[i]), sample.numbers[i]};
        std::sort(placed, placed + sample.count);
        for (int i = 0; i < sample.count; ++i)
            sample.numbers[i] = placed[i].second;
        const int *const first = sample.numbers;
        const int *const last = first + sample.count;
        const int *const middle = first + sample.count / 2;
        const ptrdiff_t leftOut = sample.count / 8;
        median = *middle;
        lower = OrientedBox::around(points, first, middle - leftOut);
        higher = OrientedBox::around(points, middle + leftOut, last);
        size = sizeOf(lower) + sizeOf(higher);
        area = areaOf(lower) + areaOf(higher);
    }

    /// How many neighbours in the ring are parted.
    int partedNeighbours(const int *first, const int *last) const
    {
        int parted = 0;
        for (SampledNumbers i(sampleStep(last - first), last - first - 1); !i.isAtEnd(); ++i) {
            const int *const at = first + *i;
            if (at[1] == at[0] + 1 && axis(at[0], median) != axis(at[1], median))
                ++parted;
        }
        return parted;
    }

    AlongAxis axis;
    OrientedBox lower;
    OrientedBox higher;
    int median;
    float size;
    float area;
};

QVector2D longerAxisOf(const OrientedBox &box)
{
    return box.extentY() > box.extentX() ? QVector2D(0.0f, 1.0f) : QVector2D(1.0f, 0.0f);
}

/// Whether boxes along the axes of the plane are as good, and closer to squares.
bool isWide(const OrientedBox &box)
{
    constexpr float Thin = 0.25f;
    return box.across > Thin * box.along;
}

QVector2D across(QVector2D direction)
{
    return {-direction.y(), direction.x()};
}

/// Two arcs upon each other want to be parted across: a triangle between the two then meets
/// neither.
const HalvesInSpace &smaller(const HalvesInSpace &along, const HalvesInSpace &across, bool isAcross)
{
    constexpr float ClearlyLess = 0.8f;
    const bool isBetter = across.area < ClearlyLess * along.area;
    const bool isWorse = along.area < ClearlyLess * across.area;
    return isBetter || (isAcross && !isWorse) ? across : along;
}

/// A thin strip is split along or across.
HalvesInSpace halvesInSpace(const QVector2D *points, const OrientedBox &box, const Sample &sample,
                            bool isAcross)
{
    if (isWide(box))
        return {points, longerAxisOf(box), sample};
    const HalvesInSpace along(points, box.axis, sample);
    return smaller(along, HalvesInSpace(points, across(box.axis), sample), isAcross);
}

/// Of the directions the one whose lines meet the box least.
QVector2D flattest(const std::vector<QVector2D> &directions, const OrientedBox &box)
{
    return *std::min_element(directions.begin(), directions.end(),
                             [&](QVector2D first, QVector2D second) {
                                 return box.widthAcross(first) < box.widthAcross(second);
                             });
}

/// How many of the halves a line that meets the box meets: the sum of that for all
/// directions. Lines of a direction that are anywhere meet a box as often as it is wide
/// across the direction.
float meetings(const HalvesInSpace &halves, const OrientedBox &box,
               const std::vector<QVector2D> &directions)
{
    float sum = 0.0f;
    for (const QVector2D direction : directions) {
        const float width = box.widthAcross(direction);
        if (width > 0.0f)
            sum += (halves.lower.widthAcross(direction) + halves.higher.widthAcross(direction)) /
                   width;
    }
    return sum;
}

} // namespace

/// A split in space has to be worth it, since the ring's neighbours ask for each other
/// again and again: fewer triangles must meet both halves, or the boxes must be by far
/// smaller, so that long slivers from elsewhere miss them.
std::optional<AlongAxis> splitForTriangles(const QVector2D *points, const int *first,
                                           const int *middle, const int *last, bool isAcross)
{
    constexpr float HardlyLarger = 1.5f;
    constexpr float MuchLarger = 4.0f;
    constexpr int ManyStrays = SampleSize / 4;
    const HalvesInRingOrder inRingOrder(points, first, middle, last);
    const Sample sample(first, last);
    const OrientedBox box = sample.boxAround(points);
    if (inRingOrder.strays == 0 && inRingOrder.size <= HardlyLarger * sizeOf(box))
        return {};
    const HalvesInSpace inSpace = halvesInSpace(points, box, sample, isAcross);
    if (inRingOrder.strays <= ManyStrays &&
        inRingOrder.strays <= inSpace.partedNeighbours(first, last) &&
        inRingOrder.size <= MuchLarger * inSpace.size)
        return {};
    return inSpace.axis;
}

std::optional<AlongAxis> splitForSurroundings(const QVector2D *points, const int *first,
                                              const int * /*middle*/, const int *last,
                                              bool /*isAcross*/)
{
    return AlongAxis(points, longerAxisOf(Sample(first, last).boxAround(points)));
}

/// Along the box, or across the lines: where they all run one way, halves between which none
/// of them passes. The axis of a sample is a little askew, which would make every half as
/// high as both in a strip whose points lie in rows.
std::optional<AlongAxis> splitForLines(const QVector2D *points, const int *first, const int *last,
                                       bool isAcross, const std::vector<QVector2D> &directions)
{
    constexpr float ClearlyFewer = 0.9f;
    const Sample sample(first, last);
    const OrientedBox box = sample.boxAround(points);
    const HalvesInSpace along(points, isWide(box) ? longerAxisOf(box) : box.axis, sample);
    const HalvesInSpace acrossLines(points, across(flattest(directions, box)), sample);
    const float metAlong = meetings(along, box, directions);
    const float metAcross = meetings(acrossLines, box, directions);
    if (metAlong < ClearlyFewer * metAcross)
        return along.axis;
    if (metAcross < ClearlyFewer * metAlong)
        return acrossLines.axis;
    return smaller(along, acrossLines, isAcross).axis;
}

} // namespace Halvard::Orv
