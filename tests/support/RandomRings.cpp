#include "support/RandomRings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace OrvTest {

namespace {

constexpr double TwoPi = 6.283185307179586;

QVector2D polar(double angle, double radius)
{
    return {static_cast<float>(radius * std::cos(angle)),
            static_cast<float>(radius * std::sin(angle))};
}

std::vector<double> sortedAngles(Dice &dice, int count)
{
    std::vector<double> angles;
    for (int i = 0; i < count; ++i)
        angles.push_back((i + dice.real(0.05, 0.95)) * TwoPi / count);
    return angles;
}

void scale(Ring &ring, double factor)
{
    for (QVector2D &point : ring.points) {
        point.setX(static_cast<float>(static_cast<double>(point.x()) * factor));
        point.setY(static_cast<float>(static_cast<double>(point.y()) * factor));
    }
}

/// Replaces one coordinate of one corner.
void poison(Dice &dice, Ring &ring)
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    const float values[] = {std::numeric_limits<float>::quiet_NaN(), inf, -inf,
                            std::numeric_limits<float>::max(), -0.0f};
    const float value = values[dice.below(5)];
    QVector2D &point =
        ring.points[static_cast<std::size_t>(dice.below(static_cast<int>(ring.points.size())))];
    if (dice.oneIn(2))
        point.setX(value);
    else
        point.setY(value);
    ring.name += ", poisoned";
}

/// A random tree that connects all cells of a square lattice.
class LatticeTree
{
public:
    LatticeTree(Dice &dice, int size) : _size(size), _group(cellCount())
    {
        std::iota(_group.begin(), _group.end(), 0);
        _opensEast.resize(cellCount());
        _opensNorth.resize(cellCount());
        std::vector<int> walls(2 * cellCount());
        std::iota(walls.begin(), walls.end(), 0);
        for (int left = static_cast<int>(walls.size()); left > 1; --left)
            std::swap(walls[static_cast<std::size_t>(left - 1)],
                      walls[static_cast<std::size_t>(dice.below(left))]);
        for (const int wall : walls)
            openUnlessConnected(wall / 2, wall % 2 == 0);
    }

    bool opensEast(int x, int y) const { return isCell(x, y) && _opensEast[at(x, y)]; }
    bool opensNorth(int x, int y) const { return isCell(x, y) && _opensNorth[at(x, y)]; }

private:
    std::size_t cellCount() const { return static_cast<std::size_t>(_size * _size); }
    std::size_t at(int x, int y) const { return static_cast<std::size_t>(y * _size + x); }
    bool isCell(int x, int y) const { return x >= 0 && x < _size && y >= 0 && y < _size; }

    int groupOf(int cell)
    {
        int &parent = _group[static_cast<std::size_t>(cell)];
        return parent == cell ? cell : parent = groupOf(parent);
    }

    void openUnlessConnected(int cell, bool east)
    {
        const int x = cell % _size + (east ? 1 : 0);
        const int y = cell / _size + (east ? 0 : 1);
        if (!isCell(x, y))
            return;
        const int first = groupOf(cell);
        const int second = groupOf(static_cast<int>(at(x, y)));
        if (first == second)
            return;
        _group[static_cast<std::size_t>(first)] = second;
        (east ? _opensEast : _opensNorth)[static_cast<std::size_t>(cell)] = true;
    }

    int _size;
    std::vector<int> _group;
    std::vector<bool> _opensEast;
    std::vector<bool> _opensNorth;
};

} // namespace

int Dice::below(int limit)
{
    return static_cast<int>(_engine() % static_cast<std::uint32_t>(limit));
}

int Dice::between(int low, int high)
{
    return low + below(high - low + 1);
}

double Dice::real(double low, double high)
{
    return low + (high - low) * (static_cast<double>(_engine()) / 4294967296.0);
}

std::uint32_t Dice::bits()
{
    const auto high = static_cast<std::uint32_t>(below(0x10000));
    return high << 16 | static_cast<std::uint32_t>(below(0x10000));
}

Ring convexRing(Dice &dice, int count)
{
    Ring ring{"convex", {}};
    const double width = dice.real(0.1, 3.0);
    for (const double angle : sortedAngles(dice, count)) {
        const QVector2D point = polar(angle, 1.0);
        ring.points.emplace_back(static_cast<float>(width) * point.x(), point.y());
    }
    return ring;
}

Ring starRing(Dice &dice, int count)
{
    Ring ring{"star", {}};
    for (const double angle : sortedAngles(dice, count))
        ring.points.push_back(polar(angle, dice.real(0.2, 1.0)));
    return ring;
}

Ring latticeStarRing(Dice &dice, int count)
{
    Ring ring{"star on a lattice", {}};
    for (const double angle : sortedAngles(dice, count)) {
        const QVector2D point = polar(angle, dice.real(60.0, 200.0));
        ring.points.emplace_back(std::round(point.x()), std::round(point.y()));
    }
    return ring;
}

Ring combRing(int teeth)
{
    Ring ring{"comb", {{static_cast<float>(2 * teeth), -1.0f}}};
    for (int tooth = teeth; tooth > 0; --tooth) {
        ring.points.emplace_back(static_cast<float>(2 * tooth), 0.0f);
        ring.points.emplace_back(static_cast<float>(2 * tooth - 1), 10.0f);
    }
    ring.points.emplace_back(0.0f, 0.0f);
    ring.points.emplace_back(0.0f, -1.0f);
    return ring;
}

Ring spiralRing(int count)
{
    Ring ring{"spiral", {}};
    const int half = count / 2;
    for (int i = 0; i < half; ++i)
        ring.points.push_back(polar(0.2 * i, 1.0 + 0.05 * i));
    for (int i = half - 1; i >= 0; --i)
        ring.points.push_back(polar(0.2 * i, 0.8 + 0.05 * i));
    // Outwards on the outer arm and back on the inner one runs counter-clockwise.
    return ring;
}

Ring windingRing(Dice &dice, int count)
{
    const int size = static_cast<int>(std::sqrt(count / 4.0));
    const LatticeTree tree(dice, size);
    Ring ring{"winding", {}};
    // Four corners stand in each cell. From each the way goes on to the next of the
    // cell, or, where the tree does, to the next cell.
    int x = 0;
    int y = 0;
    do {
        // Edges that do not meet are at least 1 apart, and get at most 0.85 closer.
        ring.points.push_back(QVector2D{static_cast<float>(x + dice.real(-0.3, 0.3)),
                                        static_cast<float>(y + dice.real(-0.3, 0.3))});
        const bool isEast = x % 2 == 1;
        const bool isNorth = y % 2 == 1;
        const int cellX = x / 2;
        const int cellY = y / 2;
        if (!isEast && !isNorth)
            tree.opensNorth(cellX, cellY - 1) ? --y : ++x;
        else if (isEast && !isNorth)
            tree.opensEast(cellX, cellY) ? ++x : ++y;
        else if (isEast)
            tree.opensNorth(cellX, cellY) ? ++y : --x;
        else
            tree.opensEast(cellX - 1, cellY) ? --x : --y;
    } while (x != 0 || y != 0);
    return ring;
}

Ring crossingRing(Dice &dice, int count)
{
    Ring ring{"crossing", {}};
    for (int i = 0; i < count; ++i)
        ring.points.push_back(
            {static_cast<float>(dice.real(-1.0, 1.0)), static_cast<float>(dice.real(-1.0, 1.0))});
    return ring;
}

Ring latticeRing(Dice &dice, int count)
{
    Ring ring{"lattice", {}};
    const int size = dice.between(2, 6);
    for (int i = 0; i < count; ++i)
        ring.points.push_back(
            {static_cast<float>(dice.below(size)), static_cast<float>(dice.below(size))});
    return ring;
}

Ring stutteringRing(Dice &dice, int count)
{
    Ring ring = starRing(dice, count);
    ring.name = "stuttering";
    for (std::size_t i = 1; i + 1 < ring.points.size(); ++i) {
        const QVector2D before = ring.points[i - 1];
        switch (dice.below(8)) {
        case 0:
            ring.points[i] = before;
            break;
        case 1:
            ring.points[i] = before + QVector2D{static_cast<float>(dice.real(-1e-6, 1e-6)),
                                                static_cast<float>(dice.real(-1e-6, 1e-6))};
            break;
        case 2:
            ring.points[i] = 0.5f * (before + ring.points[i + 1]);
            break;
        default:
            break;
        }
    }
    return ring;
}

Ring anyRing(Dice &dice, int count)
{
    Ring ring;
    switch (dice.below(6)) {
    case 0:
        ring = convexRing(dice, count);
        break;
    case 1:
        ring = starRing(dice, count);
        break;
    case 2:
        ring = crossingRing(dice, count);
        break;
    case 3:
        ring = latticeRing(dice, count);
        break;
    case 4:
        ring = latticeStarRing(dice, count);
        break;
    default:
        ring = stutteringRing(dice, count);
        break;
    }
    if (dice.oneIn(3)) {
        const double factors[] = {1e-3, 1e-5, 1e-7, 1e-30, 1e-39, 1e6, 1e17, 1e30, 3e38};
        scale(ring, factors[dice.below(9)]);
        ring.name += ", scaled";
    }
    if (dice.oneIn(6))
        poison(dice, ring);
    return ring;
}

std::vector<QVector2D> reversed(const std::vector<QVector2D> &points)
{
    return {points.rbegin(), points.rend()};
}

} // namespace OrvTest
