/// \file
/// Rings of every shape, sound and degenerate, from a fixed seed.
#pragma once

#include <QtGui/QVector2D>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace OrvTest {

/// Random numbers that come out the same with every standard library.
///
/// And with every compiler, as long as no two rolls are arguments of one call or operands of
/// one "+", whose order is the compiler's choice. Within braces it is not: they may stand in
/// `Point{dice.real(0, 1), dice.real(0, 1)}`.
class Dice
{
public:
    explicit Dice(std::uint32_t seed) : _engine(seed) {}

    /// From 0 up to but not including `limit`.
    int below(int limit);
    /// From `low` to `high`.
    int between(int low, int high);
    /// From `low` up to `high`.
    double real(double low, double high);
    bool oneIn(int chances) { return below(chances) == 0; }
    /// Any 32 bits.
    std::uint32_t bits();

private:
    std::mt19937 _engine;
};

struct Ring
{
    std::string name;
    std::vector<QVector2D> points;
};

/// \name Simple rings, counter-clockwise
/// @{
Ring convexRing(Dice &dice, int count);
Ring starRing(Dice &dice, int count);
/// A star whose points have whole coordinates up to 200.
Ring latticeStarRing(Dice &dice, int count);
/// Teeth upon a bar.
Ring combRing(int teeth);
Ring spiralRing(int count);
/// The way around a random tree on a lattice, each corner moved a little: it winds
/// everywhere.
/// \param count corners at most; the greatest 4 n^2 below is taken.
Ring windingRing(Dice &dice, int count);
/// @}

/// \name Rings that may cross, touch and repeat themselves
/// @{
Ring crossingRing(Dice &dice, int count);
/// On a lattice so small that corners coincide and lie upon each other's edges.
Ring latticeRing(Dice &dice, int count);
/// A star with corners repeated exactly, almost, and edges divided.
Ring stutteringRing(Dice &dice, int count);
/// @}

/// A ring of any kind, often scaled to huge or tiny, and now and then with
/// coordinates that are not finite.
Ring anyRing(Dice &dice, int count);

std::vector<QVector2D> reversed(const std::vector<QVector2D> &points);

} // namespace OrvTest
