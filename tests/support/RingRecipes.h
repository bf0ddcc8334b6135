/// \file
/// Large rings that a few numbers describe.
#pragma once

#include "RandomRings.h"

namespace OrvTest {

/// How to make a ring that is hard to triangulate: its corners coincide, nearly
/// coincide, nearly lie on a line, or its edges cross everywhere.
///
/// The corners are taken from a shape in some order, and then moved.
struct RingRecipe
{
    enum Shape
    {
        /// From (0, 0) to (1, 0).
        Line,
        /// Two arcs from (0, 0) to (1, 0) and back, `bend` apart: in order, a simple
        /// ring that runs counter-clockwise.
        Lens,
        /// Of the unit circle, over an angle of `bend`.
        Arc,
        /// The corners of a regular polygon of `period` corners, again and again.
        Polygon,
        /// Every other corner is the centre of the unit circle, the others lie on it.
        Fan,
        /// From one side to the other of a strip as wide as `bend`.
        Zigzag,
        /// Of the unit circle, `period` times round.
        Turns,
        /// Anywhere in a square.
        Square,
        /// A random walk in steps of up to `bend`.
        Walk,
        /// The same, brought back to where it began.
        ClosedWalk,
        /// Anywhere on a lattice of `period` points each way, a unit apart.
        Lattice,
        ShapeCount
    };

    enum Order
    {
        Forward,
        Backward,
        Shuffled,
        /// The first, the last, the second, the last but one, ...
        OutsideIn,
        /// In steps of `period`.
        Strided,
        OrderCount
    };

    Shape shape = Line;
    Order order = Forward;
    double bend = 1.0;
    int period = 3;
    /// How far a corner is moved at most, along the first axis and the second.
    double noiseX = 0.0;
    double noiseY = 0.0;
    /// Every corner stands so many times in a row.
    int repeats = 1;
    /// Everything is turned by an angle, multiplied, and moved by as much along both axes.
    double tilt = 0.0;
    double scale = 1.0;
    double offset = 0.0;
};

/// A ring of `count` corners.
std::vector<QVector2D> ringOf(const RingRecipe &recipe, int count, Dice &dice);

/// Anything that a recipe can say.
RingRecipe anyRecipe(Dice &dice);

/// The same shape in the same order: turned, moved, scaled, and with more noise or less.
RingRecipe variationOf(const RingRecipe &recipe, Dice &dice);

/// For messages.
std::string written(const RingRecipe &recipe);

struct RingFamily
{
    const char *name;
    RingRecipe recipe;
};

/// Rings that take quadratic time where every corner that may block an ear is asked.
const std::vector<RingFamily> &hostileRings();

} // namespace OrvTest
