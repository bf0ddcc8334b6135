#include "RingRecipes.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>

namespace OrvTest {

namespace {

constexpr double Pi = 3.141592653589793;

struct Place
{
    double x;
    double y;
};

Place onCircle(double angle, double radius = 1.0)
{
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

Place onLens(double u, double bend)
{
    const double x = u < 0.5 ? 2.0 * u : 2.0 - 2.0 * u;
    const double height = 2.0 * bend * x * (1.0 - x);
    return {x, u < 0.5 ? -height : height};
}

/// Place `i` of `count` of the shape.
Place placeOn(const RingRecipe &recipe, int i, int count)
{
    const double u = static_cast<double>(i) / count;
    switch (recipe.shape) {
    case RingRecipe::Lens:
        return onLens(u, recipe.bend);
    case RingRecipe::Arc:
        return onCircle(recipe.bend * u);
    case RingRecipe::Polygon:
        return onCircle(2.0 * Pi * (i % recipe.period) / recipe.period);
    case RingRecipe::Fan:
        return i % 2 == 0 ? Place{0.0, 0.0} : onCircle(2.0 * Pi * u);
    case RingRecipe::Zigzag:
        return {u, i % 2 == 0 ? 0.0 : recipe.bend};
    case RingRecipe::Turns:
        return onCircle(2.0 * Pi * u * recipe.period);
    default:
        return {u, 0.0};
    }
}

/// Which place of the shape each corner takes.
std::vector<int> placesInOrder(const RingRecipe &recipe, int count, Dice &dice)
{
    std::vector<int> places(static_cast<std::size_t>(count));
    std::iota(places.begin(), places.end(), 0);
    for (int i = 0; i < count; ++i) {
        int &place = places[static_cast<std::size_t>(i)];
        switch (recipe.order) {
        case RingRecipe::Backward:
            place = count - 1 - i;
            break;
        case RingRecipe::Shuffled:
            std::swap(place, places[static_cast<std::size_t>(dice.below(i + 1))]);
            break;
        case RingRecipe::OutsideIn:
            place = i % 2 == 0 ? i / 2 : count - 1 - i / 2;
            break;
        case RingRecipe::Strided:
            place = static_cast<int>(static_cast<long long>(i) * recipe.period % count);
            break;
        default:
            break;
        }
    }
    return places;
}

bool isRandom(RingRecipe::Shape shape)
{
    return shape == RingRecipe::Square || shape == RingRecipe::Walk ||
           shape == RingRecipe::ClosedWalk || shape == RingRecipe::Lattice;
}

/// Takes out what a walk has gone from its beginning to its end, a share at each step.
void closeWalk(std::vector<Place> &places)
{
    if (places.empty())
        return;
    const Place end = places.back();
    double steps = 0.0;
    for (Place &place : places) {
        steps += 1.0;
        const double share = steps / static_cast<double>(places.size());
        place.x -= share * end.x;
        place.y -= share * end.y;
    }
}

/// The places of a shape that is random by itself.
std::vector<Place> randomPlaces(const RingRecipe &recipe, int count, Dice &dice)
{
    std::vector<Place> places;
    Place walker{0.0, 0.0};
    for (int i = 0; i < count; ++i) {
        if (recipe.shape == RingRecipe::Square) {
            places.push_back(Place{dice.real(-1.0, 1.0), dice.real(-1.0, 1.0)});
            continue;
        }
        if (recipe.shape == RingRecipe::Lattice) {
            places.push_back(Place{static_cast<double>(dice.below(recipe.period)),
                                   static_cast<double>(dice.below(recipe.period))});
            continue;
        }
        walker.x += dice.real(-recipe.bend, recipe.bend);
        walker.y += dice.real(-recipe.bend, recipe.bend);
        places.push_back(walker);
    }
    if (recipe.shape == RingRecipe::ClosedWalk)
        closeWalk(places);
    return places;
}

std::vector<Place> placesOf(const RingRecipe &recipe, int count, Dice &dice)
{
    if (isRandom(recipe.shape))
        return randomPlaces(recipe, count, dice);
    std::vector<Place> places;
    for (const int place : placesInOrder(recipe, count, dice))
        places.push_back(placeOn(recipe, place, count));
    return places;
}

/// 0, or anything from ten to the power of `lowestPower` up to 1.
double anyMagnitude(Dice &dice, int lowestPower)
{
    return dice.oneIn(4) ? 0.0 : std::pow(10.0, dice.real(lowestPower, 0.0));
}

} // namespace

std::vector<QVector2D> ringOf(const RingRecipe &recipe, int count, Dice &dice)
{
    const int repeats = std::max(1, recipe.repeats);
    const double cosine = std::cos(recipe.tilt);
    const double sine = std::sin(recipe.tilt);
    std::vector<QVector2D> points;
    for (Place place : placesOf(recipe, (count + repeats - 1) / repeats, dice)) {
        place.x += dice.real(-recipe.noiseX, recipe.noiseX);
        place.y += dice.real(-recipe.noiseY, recipe.noiseY);
        const double x = cosine * place.x - sine * place.y;
        const double y = sine * place.x + cosine * place.y;
        const QVector2D point(static_cast<float>(recipe.scale * x + recipe.offset),
                              static_cast<float>(recipe.scale * y + recipe.offset));
        for (int i = 0; i < repeats && static_cast<int>(points.size()) < count; ++i)
            points.push_back(point);
    }
    return points;
}

RingRecipe anyRecipe(Dice &dice)
{
    RingRecipe recipe;
    recipe.shape = static_cast<RingRecipe::Shape>(dice.below(RingRecipe::ShapeCount));
    recipe.order = static_cast<RingRecipe::Order>(dice.below(RingRecipe::OrderCount));
    recipe.bend = std::pow(10.0, dice.real(-7.0, 0.5));
    recipe.period = dice.oneIn(2) ? dice.between(2, 7) : dice.between(2, 200);
    recipe.noiseX = dice.oneIn(2) ? 0.0 : anyMagnitude(dice, -8);
    recipe.noiseY = dice.oneIn(2) ? 0.0 : anyMagnitude(dice, -8);
    recipe.repeats = dice.oneIn(4) ? dice.between(2, 4) : 1;
    recipe.tilt = dice.oneIn(2) ? 0.0 : dice.real(0.0, 2.0 * Pi);
    recipe.scale = dice.oneIn(3) ? std::pow(10.0, dice.real(-6.0, 6.0)) : 1.0;
    recipe.offset = dice.oneIn(4) ? std::pow(10.0, dice.real(-3.0, 3.0)) : 0.0;
    return recipe;
}

RingRecipe variationOf(const RingRecipe &recipe, Dice &dice)
{
    RingRecipe variation = recipe;
    variation.bend *= dice.real(0.1, 10.0);
    variation.noiseX = dice.oneIn(3) ? anyMagnitude(dice, -8) : recipe.noiseX * dice.real(0.0, 2.0);
    variation.noiseY = dice.oneIn(3) ? anyMagnitude(dice, -8) : recipe.noiseY * dice.real(0.0, 2.0);
    variation.repeats = dice.oneIn(4) ? 2 : 1;
    variation.tilt = dice.oneIn(2) ? recipe.tilt : dice.real(0.0, 2.0 * Pi);
    variation.scale = dice.oneIn(3) ? std::pow(10.0, dice.real(-6.0, 6.0)) : recipe.scale;
    variation.offset = dice.oneIn(3) ? dice.real(-10.0, 10.0) : recipe.offset;
    return variation;
}

std::string written(const RingRecipe &recipe)
{
    std::ostringstream text;
    text << "shape " << recipe.shape << ", order " << recipe.order << ", bend " << recipe.bend
         << ", period " << recipe.period << ", noise " << recipe.noiseX << ' ' << recipe.noiseY
         << ", repeats " << recipe.repeats << ", tilt " << recipe.tilt << ", scale " << recipe.scale
         << ", offset " << recipe.offset;
    return text.str();
}

namespace {

RingRecipe with(RingRecipe::Shape shape, RingRecipe::Order order, double bend = 1.0, int period = 3,
                double noiseX = 0.0, double noiseY = 0.0, double tilt = 0.0, double offset = 0.0)
{
    RingRecipe recipe;
    recipe.shape = shape;
    recipe.order = order;
    recipe.bend = bend;
    recipe.period = period;
    recipe.noiseX = noiseX;
    recipe.noiseY = noiseY;
    recipe.tilt = tilt;
    recipe.offset = offset;
    return recipe;
}

} // namespace

const std::vector<RingFamily> &hostileRings()
{
    using R = RingRecipe;
    static const std::vector<RingFamily> families = {
        {"three points", with(R::Polygon, R::Forward, 1.0, 3)},
        {"four points", with(R::Polygon, R::Forward, 1.0, 4)},
        {"36 points in random order", with(R::Polygon, R::Shuffled, 1.0, 36)},
        {"97 points", with(R::Polygon, R::Forward, 1.0, 97)},
        {"flat lens", with(R::Lens, R::Forward, 1e-3)},
        {"flatter lens", with(R::Lens, R::Forward, 1e-5)},
        {"tilted lens", with(R::Lens, R::Forward, 1e-3, 3, 0.0, 0.0, 0.4)},
        {"jittered lens", with(R::Lens, R::Forward, 1e-5, 3, 0.02)},
        {"lens jittered by its length", with(R::Lens, R::Forward, 1e-5, 3, 1.0)},
        {"lens in random order", with(R::Lens, R::Shuffled, 1e-3)},
        {"line in random order", with(R::Line, R::Shuffled, 1.0, 3, 0.0, 0.0, 0.35)},
        {"tilted line", with(R::Line, R::Backward, 1.0, 3, 0.0, 0.0, 4.6633)},
        {"line to and fro, half a turn", with(R::Line, R::Forward, 1.0, 3, 6.3e-5, 0.0, Pi)},
        {"line of few rows", with(R::Line, R::OutsideIn, 1.0, 3, 0.0, 6.1e-6, 0.0, 20.8)},
        {"noisy line", with(R::Line, R::Forward, 1.0, 3, 0.0, 1e-7)},
        {"noisy line in random order", with(R::Line, R::Shuffled, 1.0, 3, 0.0, 1e-7)},
        {"two clusters", with(R::Polygon, R::Forward, 1.0, 2, 1e-6, 1e-6)},
        {"two tiny clusters", with(R::Polygon, R::Forward, 1.0, 2, 1e-7, 1e-7)},
        {"half circle chords", with(R::Arc, R::Shuffled, Pi)},
        {"fan", with(R::Fan, R::Forward)},
        {"fan in random order", with(R::Fan, R::Shuffled)},
        {"fan from outside in", with(R::Fan, R::OutsideIn)},
        {"fan far out", with(R::Fan, R::Backward, 1.0, 3, 1e-4, 2.6e-4, 0.0, 175.4)},
        {"crossing", with(R::Square, R::Forward)},
        {"circle in random order", with(R::Arc, R::Shuffled, 2.0 * Pi)},
        {"random walk", with(R::Walk, R::Forward, 1e-2)},
        {"closed random walk", with(R::ClosedWalk, R::Forward, 1e-2)},
        {"lattice", with(R::Lattice, R::Forward, 1.0, 360)},
        {"zigzag", with(R::Zigzag, R::Forward, 1e-3)},
        {"tilted zigzag", with(R::Zigzag, R::Backward, 2e-4, 3, 0.0, 0.0, 3.387)},
        {"zigzag from outside in", with(R::Zigzag, R::OutsideIn, 2e-6)},
        {"turns", with(R::Turns, R::Forward, 1.0, 10)},
    };
    return families;
}

} // namespace OrvTest
