#include "RandomRings.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

Ring crossingRing(Dice &dice, int count)
{
    Ring ring{"crossing", {}};
    for (int i = 0; i < count; ++i)
        ring.points.emplace_back(static_cast<float>(dice.real(-1.0, 1.0)),
                                 static_cast<float>(dice.real(-1.0, 1.0)));
    return ring;
}

Ring latticeRing(Dice &dice, int count)
{
    Ring ring{"lattice", {}};
    const int size = dice.between(2, 6);
    for (int i = 0; i < count; ++i)
        ring.points.emplace_back(static_cast<float>(dice.below(size)),
                                 static_cast<float>(dice.below(size)));
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
            ring.points[i] = before + QVector2D(static_cast<float>(dice.real(-1e-6, 1e-6)),
                                                static_cast<float>(dice.real(-1e-6, 1e-6)));
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
