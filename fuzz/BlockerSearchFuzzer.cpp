// Whether something blocks a corner of a large ring, as the library looks it up and as a
// loop over all corners says, while corners go. Most such rings cannot be cut, so that
// their triangles alone would tell little.
#include "support/Coordinates.h"
#include "support/Fuzzing.h"
#include "support/Recipes.h"

#include "support/NearCorners.h"
#include "support/PlainGeometry.h"

#include "Triangles/Ears/BlockerSearch.h"
#include "Triangles/Ears/CornerEvaluation.h"
#include "Triangles/Ears/LineSearch.h"

#include <cmath>

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

/// So many that the search looks at some of them only.
constexpr int FewestCorners = 260;
constexpr unsigned MoreCorners = 100;

/// A pattern of points, repeated a step further each time: combs, stairs, zigzags, and
/// rings that run over the same points again.
std::vector<QVector2D> takePoints(Input &input, std::size_t count)
{
    Coordinates coordinates(input);
    const float stepX = coordinates.next();
    const QVector2D step(stepX, coordinates.next());
    std::vector<QVector2D> points;
    do {
        const float x = coordinates.next();
        points.emplace_back(x, coordinates.next());
    } while (!input.isAtEnd() && points.size() < count);
    const std::size_t pattern = points.size();
    while (points.size() < count)
        points.push_back(points[points.size() - pattern] + step);
    return points;
}

class Ring
{
public:
    explicit Ring(std::vector<QVector2D> points)
        : _points(std::move(points)), _active(_points.size(), true)
    {
        const int count = static_cast<int>(_points.size());
        for (int i = 0; i < count; ++i)
            _corners.push_back({(i + 1) % count, (i + count - 1) % count, 0.0f, 0.0f, true, false});
        _blockers.reset(_points.data(), count);
        placeForLines();
    }

    /// The corner `number`, or the next one that is still there.
    int corner(unsigned number) const
    {
        std::size_t i = number % _corners.size();
        while (!_active[i])
            i = (i + 1) % _corners.size();
        return static_cast<int>(i);
    }

    void compare(int index)
    {
        Vertex &corner = _corners[static_cast<std::size_t>(index)];
        evaluateCorner(corner, _points.data(), index, [&](const CornerTriangle &triangle) {
            return _blockers.isBlocked(index, triangle);
        });
        const OrvTest::PlainCorner plain =
            OrvTest::plainCorner(_points, _active, index, corner.next, corner.prev);
        require(corner.isEar == plain.isEar, "an ear for one of the two only");
        if (corner.crossZ > 0.0f)
            compareLineSearch(index);
    }

    void remove(int index)
    {
        const Vertex &corner = _corners[static_cast<std::size_t>(index)];
        _corners[static_cast<std::size_t>(corner.prev)].next = corner.next;
        _corners[static_cast<std::size_t>(corner.next)].prev = corner.prev;
        _active[static_cast<std::size_t>(index)] = false;
        _blockers.remove(index);
        _lineSearch.remove(index);
        compare(corner.prev);
        compare(corner.next);
    }

private:
    CornerTriangle triangleOf(int index) const
    {
        const Vertex &corner = _corners[static_cast<std::size_t>(index)];
        return CornerTriangle(at(index), at(corner.next), at(corner.prev));
    }

    QVector2D at(int index) const { return _points[static_cast<std::size_t>(index)]; }

    /// In rings of this size nothing takes so long that it would be done.
    void placeForLines()
    {
        const int count = static_cast<int>(_points.size());
        std::vector<int> sites;
        _lineSearch.reset(count, count);
        for (int i = 0; i < count; ++i) {
            const CornerTriangle triangle = triangleOf(i);
            const QVector2D direction = triangle.longestDirection();
            if (!std::isnan(direction.x()) && !std::isnan(direction.y()))
                _lineSearch.note(triangle, LineSearch::ManySteps);
            if (std::isfinite(at(i).x()) && std::isfinite(at(i).y()))
                sites.push_back(i);
        }
        _hasLineSearch = _lineSearch.isWorthIt() && !sites.empty();
        if (_hasLineSearch)
            _lineSearch.place(sites, _points);
    }

    /// What is found blocks; what is near a corner need not be found.
    void compareLineSearch(int index)
    {
        if (!_hasLineSearch)
            return;
        const CornerTriangle triangle = triangleOf(index);
        const QVector2D opposite = triangle.edge(1).direction;
        if (std::isnan(opposite.x()) || std::isnan(opposite.y()))
            return;
        const int found = _lineSearch.blocker(triangle, TriangleReach(triangle));
        if (found != NoSite) {
            require(_active[static_cast<std::size_t>(found)], "a corner that is gone blocks");
            require(triangle.isBlockedBy(at(found)), "a corner that does not block was found");
            return;
        }
        for (int i = 0; i < static_cast<int>(_points.size()); ++i)
            require(!_active[static_cast<std::size_t>(i)] || !triangle.isBlockedBy(at(i)) ||
                        OrvTest::isNearACorner(at(i), triangle),
                    "a corner that blocks was not found");
    }

    std::vector<QVector2D> _points;
    std::vector<bool> _active;
    std::vector<Vertex> _corners;
    BlockerSearch _blockers;
    LineSearch _lineSearch;
    bool _hasLineSearch = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const unsigned options = input.byte();
    std::vector<std::uint16_t> calls(options % 48);
    for (std::uint16_t &call : calls)
        call = input.take<std::uint16_t>();
    const int count = FewestCorners + static_cast<int>(input.below(MoreCorners));
    // Of a byte, one value of four.
    const bool isByRecipe = options / 48 >= 4;
    // A recipe may repeat corners, and the search looks at distinct points only.
    Ring ring(isByRecipe ? takeRingByRecipe(input, 4 * count)
                         : takePoints(input, static_cast<std::size_t>(count)));
    for (const std::uint16_t call : calls) {
        const int corner = ring.corner(call >> 1);
        if (call & 1u)
            ring.remove(corner);
        else
            ring.compare(corner);
    }
    return 0;
}
