// Faces of any floats and corners, about any normal and about their own, cut by the
// library and by the plain algorithm.
#include "support/Coordinates.h"
#include "support/Fuzzing.h"
#include "support/Recipes.h"

#include "support/MessageCapture.h"
#include "support/PlainGeometry.h"

#include <OrvModel/Triangulate3D.h>

#include <QtGui/QVector3D>

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

struct SpaceFace
{
    std::vector<float> positions;
    std::vector<int> corners;
};

/// The positions after one another, or picked by further bytes: corners may then come
/// more than once.
SpaceFace takeFace(Input &input)
{
    SpaceFace face;
    const unsigned pickedCorners = input.byte();
    Coordinates coordinates(input);
    std::size_t vertices = 0;
    while (input.size() > pickedCorners && vertices < MaxCorners) {
        for (int axis = 0; axis < 3; ++axis)
            face.positions.push_back(coordinates.next());
        ++vertices;
    }
    if (vertices == 0)
        return face;
    if (pickedCorners == 0) {
        for (std::size_t i = 0; i < vertices; ++i)
            face.corners.push_back(static_cast<int>(i));
    }
    for (unsigned i = 0; i < pickedCorners; ++i)
        face.corners.push_back(static_cast<int>(input.byte() % vertices));
    return face;
}

/// A ring by a recipe, in a plane that the input turns in space.
SpaceFace takeFaceByRecipe(Input &input)
{
    constexpr int Fewest = 260;
    const float slopeX = input.take<std::int8_t>();
    const float slopeY = input.take<std::int8_t>();
    const int count = Fewest + static_cast<int>(input.below(64));
    SpaceFace face;
    for (const QVector2D point : takeRingByRecipe(input, count)) {
        face.corners.push_back(static_cast<int>(face.corners.size()));
        const float z = (slopeX * point.x() + slopeY * point.y()) / 32.0f;
        face.positions.insert(face.positions.end(), {point.x(), point.y(), z});
    }
    return face;
}

/// Along an axis, or anything: what is no unit vector has a defined result, too.
QVector3D takeNormal(Input &input, unsigned kind)
{
    switch (kind) {
    case 0:
        return {0.0f, 0.0f, 1.0f};
    case 1:
        return {0.0f, -1.0f, 0.0f};
    case 2: {
        const float x = input.take<std::int8_t>();
        const float y = input.take<std::int8_t>();
        return QVector3D(x, y, input.take<std::int8_t>()).normalized();
    }
    default: {
        const float x = input.take<float>();
        const float y = input.take<float>();
        return {x, y, input.take<float>()};
    }
    }
}

/// The vertex numbers that positions within the face stand for.
template <typename Index>
QVector<Index> verticesOf(const SpaceFace &face, const std::vector<int> &triangles)
{
    QVector<Index> vertices{7}; // what was there before stays
    for (const int corner : triangles)
        vertices.append(static_cast<Index>(face.corners[static_cast<std::size_t>(corner)]));
    return vertices;
}

template <typename Index>
void compare(const SpaceFace &face, const QVector3D *normal, const std::vector<int> &plain)
{
    const int count = static_cast<int>(face.corners.size());
    QVector<Index> out{7};
    if (normal)
        Triangulate3D(*normal, count, face.corners.data(), face.positions.data(), out);
    else
        Triangulate3D(count, face.corners.data(), face.positions.data(), out);
    require(out == verticesOf<Index>(face, plain), "other triangles");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    constexpr unsigned NormalKinds = 4;
    const unsigned options = input.byte();
    const QVector3D given = takeNormal(input, options % NormalKinds);
    // One of eight, since it takes as long as many small faces.
    const bool isByRecipe = options / NormalKinds % 8 == 7;
    const SpaceFace face = isByRecipe ? takeFaceByRecipe(input) : takeFace(input);
    const bool isFace = face.corners.size() >= 3;

    const OrvTest::MessageCapture capture;
    const std::vector<int> about =
        isFace ? OrvTest::plainTriangulate3D(given, face.corners, face.positions)
               : std::vector<int>();
    compare<unsigned int>(face, &given, about);
    compare<unsigned short>(face, &given, about);
    QVector<int> positionsInFace{7};
    Triangulate3DImpl(given, static_cast<int>(face.corners.size()), face.corners.data(),
                      face.positions.data(), positionsInFace);
    require(std::vector<int>(positionsInFace.begin(), positionsInFace.end()) == about,
            "other positions within the face");

    std::vector<int> own;
    if (isFace)
        own = OrvTest::plainTriangulate3D(OrvTest::plainFaceNormal(face.corners, face.positions),
                                          face.corners, face.positions);
    compare<unsigned int>(face, nullptr, own);
    compare<unsigned short>(face, nullptr, own);
    require(capture.messages().size() == (about.empty() ? 3u : 0u) + (own.empty() ? 2u : 0u),
            "not one message for each failure");
    return 0;
}
