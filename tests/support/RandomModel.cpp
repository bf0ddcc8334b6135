#include "support/RandomModel.h"

#include "support/ModelBuilding.h"

#include <cmath>
#include <limits>

namespace OrvTest {

namespace {

/// How the coordinates of a model are.
enum class Numbers
{
    Lattice,
    Real,
    FarAway,
    Scaled,
    Degenerate
};

float randomNumber(Dice &dice, Numbers numbers)
{
    switch (numbers) {
    case Numbers::Lattice:
        return static_cast<float>(dice.below(3));
    case Numbers::Real:
        return static_cast<float>(dice.real(-1.0, 1.0));
    case Numbers::FarAway:
        return static_cast<float>(1000.0 + dice.real(-0.01, 0.01));
    case Numbers::Scaled: {
        const double scale = std::pow(10.0, dice.real(-25.0, 25.0));
        return static_cast<float>(scale * dice.real(-1.0, 1.0));
    }
    case Numbers::Degenerate:
        break;
    }
    constexpr float inf = std::numeric_limits<float>::infinity();
    const float strange[] = {std::numeric_limits<float>::quiet_NaN(), inf,    -inf, -0.0f, 0.0f,
                             std::numeric_limits<float>::max(),       1e-40f, 1.0f};
    return dice.oneIn(2) ? strange[dice.below(8)] : static_cast<float>(dice.real(-1.0, 1.0));
}

Numbers randomNumbers(Dice &dice)
{
    return static_cast<Numbers>(dice.below(5));
}

/// Values, some of which stand there more than once.
std::vector<float> randomValues(Dice &dice, int components, Numbers numbers)
{
    std::vector<float> values;
    const int count = dice.between(1, 40);
    for (int i = 0; i < count; ++i) {
        const bool repeats = i > 0 && dice.oneIn(4);
        const std::size_t source =
            static_cast<std::size_t>(components * (i == 0 ? 0 : dice.below(i)));
        for (int c = 0; c < components; ++c)
            values.push_back(repeats ? values[source + static_cast<std::size_t>(c)]
                                     : randomNumber(dice, numbers));
    }
    return values;
}

unsigned randomIndex(Dice &dice, unsigned valueCount, bool wild)
{
    if (wild && dice.oneIn(8)) {
        const unsigned strays[] = {absentIndex, 0xffffffffu, valueCount, valueCount + 1,
                                   0x80000000u};
        return strays[dice.below(5)];
    }
    return static_cast<unsigned>(dice.below(static_cast<int>(valueCount)));
}

/// Indices for the corners, now and then for the first of them only.
std::vector<unsigned> randomIndices(Dice &dice, std::size_t valueCount, unsigned cornerCount)
{
    const bool wild = dice.oneIn(2);
    const unsigned given =
        dice.oneIn(4) ? static_cast<unsigned>(dice.below(static_cast<int>(cornerCount) + 1))
                      : cornerCount;
    std::vector<unsigned> indices;
    for (unsigned i = 0; i < given; ++i)
        indices.push_back(randomIndex(dice, static_cast<unsigned>(valueCount), wild));
    return indices;
}

unsigned randomCornerCount(Dice &dice, bool onlyTriangles)
{
    if (onlyTriangles)
        return dice.oneIn(20) ? static_cast<unsigned>(dice.below(3)) : 3;
    switch (dice.below(12)) {
    case 0:
        return static_cast<unsigned>(dice.below(3));
    case 1:
        return static_cast<unsigned>(dice.between(5, 12));
    case 2:
        return dice.oneIn(20) ? static_cast<unsigned>(dice.between(253, 258)) : 5;
    case 3:
    case 4:
    case 5:
    case 6:
        return 3;
    default:
        return 4;
    }
}

/// Gives the corners of a face positions of their own, that make a polygon which
/// may well be cut.
void makePolygon(Dice &dice, PlainAttribute &positions, unsigned firstCorner, unsigned count)
{
    const Ring ring = dice.oneIn(2) ? starRing(dice, static_cast<int>(count))
                                    : convexRing(dice, static_cast<int>(count));
    const float slope = static_cast<float>(dice.real(-2.0, 2.0));
    for (unsigned i = 0; i < count; ++i) {
        if (firstCorner + i >= positions.indices.size())
            return;
        const QVector2D point = ring.points[i];
        positions.indices[firstCorner + i] = static_cast<unsigned>(positions.values.size() / 3);
        positions.values.insert(positions.values.end(), {point.x(), point.y(), slope * point.x()});
    }
}

} // namespace

PlainModel randomModel(Dice &dice)
{
    PlainModel model;
    const int groupCount = dice.between(1, 5);
    for (int i = 0; i < groupCount; ++i)
        model.groups.push_back({QString::number(i), {}, {}});
    const bool onlyTriangles = dice.oneIn(3);
    const int faceCount = dice.between(0, 60);
    int group = 0; // -1 for none
    for (int face = 0; face < faceCount; ++face) {
        if (dice.oneIn(6))
            group = dice.between(-1, groupCount - 1);
        if (group >= 0)
            model.groups[static_cast<std::size_t>(group)].faces.push_back(
                static_cast<quint32>(face));
        model.cornerCounts.push_back(randomCornerCount(dice, onlyTriangles));
    }
    const unsigned corners = model.cornerCount();
    const Numbers numbers = randomNumbers(dice);
    const auto fill = [&](PlainAttribute &attribute, Numbers kind) {
        attribute.values = randomValues(dice, attribute.components, kind);
        const std::size_t count =
            attribute.values.size() / static_cast<std::size_t>(attribute.components);
        attribute.indices = randomIndices(dice, count, corners);
    };
    const bool hasPositions = !dice.oneIn(20);
    if (hasPositions)
        fill(model.positions(), numbers);
    if (dice.oneIn(3))
        fill(model.normals(), randomNumbers(dice));
    if (dice.oneIn(2))
        fill(model.texCoords(), randomNumbers(dice));
    unsigned firstCorner = 0;
    for (const unsigned count : model.cornerCounts) {
        if (count >= 3 && hasPositions && dice.oneIn(2))
            makePolygon(dice, model.positions(), firstCorner, count);
        firstCorner += count;
    }
    return model;
}

} // namespace OrvTest
