#include "support/PlainModel.h"

#include "support/ModelBuilding.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace OrvTest {

using namespace Halvard::Orv;

namespace {

void append(GrowArray<float> &array, const std::vector<float> &values)
{
    for (const float value : values)
        array.append(value);
}

void append(GrowArray<quint32> &array, const std::vector<unsigned> &values)
{
    for (const unsigned value : values)
        array.append(value);
}

/// Adds a face to the runs of its group.
void addToRuns(FaceGroup &group, const FaceRun &face)
{
    if (!group.runs.empty()) {
        FaceRun &last = group.runs.back();
        if (last.firstFace + last.faceCount == face.firstFace) {
            ++last.faceCount;
            return;
        }
    }
    group.runs.push_back(face);
}

void addGroups(const PlainModel &model, OBJGeometry &geometry)
{
    std::vector<int> places(model.groups.size(), -1);
    FaceRun next = {0, 1, 0, 0};
    for (std::size_t face = 0; face < model.cornerCounts.size(); ++face) {
        const int group = model.groupOfFace[face];
        if (group >= 0) {
            int &place = places[static_cast<std::size_t>(group)];
            if (place < 0) {
                place = static_cast<int>(geometry.groups.size());
                geometry.groups.push_back({model.groups[static_cast<std::size_t>(group)], {}});
            }
            addToRuns(geometry.groups[static_cast<std::size_t>(place)], next);
        }
        ++next.firstFace;
        next.firstCorner += model.cornerCounts[face];
        next.firstLarge += model.cornerCounts[face] >= CornerCounts::Escape ? 1 : 0;
    }
}

void pourAttribute(ModelBuilder &builder, const QString &name, int components,
                   const PlainAttribute &attribute)
{
    if (!attribute.values.empty())
        addAttribute(builder, name, components, attribute.values, attribute.indices);
}

/// How the coordinates of a model are.
enum class Numbers
{
    Lattice,
    Real,
    FarAway,
    Scaled,
    Sick
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
    case Numbers::Sick:
        break;
    }
    constexpr float inf = std::numeric_limits<float>::infinity();
    const float sick[] = {std::numeric_limits<float>::quiet_NaN(), inf,    -inf, -0.0f, 0.0f,
                          std::numeric_limits<float>::max(),       1e-40f, 1.0f};
    return dice.oneIn(2) ? sick[dice.below(8)] : static_cast<float>(dice.real(-1.0, 1.0));
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
void makePolygon(Dice &dice, PlainModel &model, unsigned firstCorner, unsigned count)
{
    const Ring ring = dice.oneIn(2) ? starRing(dice, static_cast<int>(count))
                                    : convexRing(dice, static_cast<int>(count));
    const float slope = static_cast<float>(dice.real(-2.0, 2.0));
    for (unsigned i = 0; i < count; ++i) {
        if (firstCorner + i >= model.positions.indices.size())
            return;
        const QVector2D point = ring.points[i];
        model.positions.indices[firstCorner + i] =
            static_cast<unsigned>(model.positions.values.size() / 3);
        model.positions.values.insert(model.positions.values.end(),
                                      {point.x(), point.y(), slope * point.x()});
    }
}

} // namespace

unsigned PlainModel::cornerCount() const
{
    return std::accumulate(cornerCounts.begin(), cornerCounts.end(), 0u);
}

OBJGeometry toGeometry(const PlainModel &model)
{
    OBJGeometry geometry;
    append(geometry.positions.values, model.positions.values);
    append(geometry.positions.indices, model.positions.indices);
    append(geometry.normals.values, model.normals.values);
    append(geometry.normals.indices, model.normals.indices);
    append(geometry.texCoords.values, model.texCoords.values);
    append(geometry.texCoords.indices, model.texCoords.indices);
    for (const unsigned count : model.cornerCounts)
        geometry.cornerCounts.append(count);
    geometry.cornerCount = model.cornerCount();
    addGroups(model, geometry);
    return geometry;
}

void pour(const PlainModel &model, ModelBuilder &builder)
{
    pourAttribute(builder, vertexName(), 3, model.positions);
    pourAttribute(builder, normalName(), 3, model.normals);
    pourAttribute(builder, texCoordName(), 2, model.texCoords);
    addFaces(builder, model.cornerCounts);
    for (std::size_t group = 0; group < model.groups.size(); ++group) {
        std::vector<unsigned> faces;
        for (std::size_t face = 0; face < model.groupOfFace.size(); ++face) {
            if (model.groupOfFace[face] == static_cast<int>(group))
                faces.push_back(static_cast<unsigned>(face));
        }
        addGroup(builder, model.groups[group], faces);
    }
    if (model.normals.values.empty())
        builder.generateNormals(normalName());
}

PlainModel randomModel(Dice &dice)
{
    PlainModel model;
    const int groupCount = dice.between(1, 5);
    for (int i = 0; i < groupCount; ++i)
        model.groups.push_back(QString::number(i));
    const bool onlyTriangles = dice.oneIn(3);
    const int faceCount = dice.between(0, 60);
    int group = 0;
    for (int face = 0; face < faceCount; ++face) {
        if (dice.oneIn(6))
            group = dice.between(-1, groupCount - 1);
        model.groupOfFace.push_back(group);
        model.cornerCounts.push_back(randomCornerCount(dice, onlyTriangles));
    }
    const unsigned corners = model.cornerCount();
    const Numbers numbers = randomNumbers(dice);
    if (!dice.oneIn(20)) {
        model.positions.values = randomValues(dice, 3, numbers);
        model.positions.indices = randomIndices(dice, model.positions.values.size() / 3, corners);
    }
    if (dice.oneIn(3)) {
        model.normals.values = randomValues(dice, 3, randomNumbers(dice));
        model.normals.indices = randomIndices(dice, model.normals.values.size() / 3, corners);
    }
    if (dice.oneIn(2)) {
        model.texCoords.values = randomValues(dice, 2, randomNumbers(dice));
        model.texCoords.indices = randomIndices(dice, model.texCoords.values.size() / 2, corners);
    }
    unsigned firstCorner = 0;
    for (const unsigned count : model.cornerCounts) {
        if (count >= 3 && !model.positions.values.empty() && dice.oneIn(2))
            makePolygon(dice, model, firstCorner, count);
        firstCorner += count;
    }
    return model;
}

} // namespace OrvTest
