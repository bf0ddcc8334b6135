/// \file
/// What becomes of one face, and what is odd about its shape.
#pragma once

#include <Triangles/FaceTriangulation.h>

#include <vector>

namespace Halvard::Orv::Checking {

/// \name Bounds beyond which a shape is odd
/// All are relative to the face's own size, so that the unit of a file does not matter.
/// @{

/// A face is without area when the height of its triangles is below this part of its length.
constexpr double ThinnestHeight = 1e-6;
/// A face is not planar when its corners leave its plane by more than this part of its length.
constexpr double MostBulge = 0.1;
/// A quad is split wrongly when a triangle runs backwards with more than this part of the area.
constexpr double LeastBackwardArea = 1e-4;

/// @}

struct FaceShape
{
    /// Number of triangles that the loader makes.
    int triangles = 0;
    /// Two neighbouring corners lie at the same place.
    bool hasCoincidentCorners = false;
    bool hasNoArea = false;
    /// The triangles face the other side than the ring: the loader computes the normal in floats,
    /// and far from the origin these cancel out.
    bool isTurnedOver = false;
    /// A quad that the diagonal from corner 1 to corner 3 leaves, while the other one does not.
    bool isSplitWrongly = false;
    bool isNotPlanar = false;
    /// Twice the area's vector, in double precision: towards the side from which the ring runs
    /// counter-clockwise. Not finite where a coordinate is not.
    double normal[3] = {};
};

/// Looks at faces one after the other. Triangles are made by the library's own code wherever it
/// depends on the positions how many there are and which way they run.
class FaceShapes
{
public:
    FaceShapes() { _triangulation.setQuiet(true); }

    /// \param xyz x, y, z of `count` corners in ring order.
    FaceShape examine(int count, const float *xyz);

private:
    void compareWithLibrary(int count, const float *xyz, FaceShape &shape);

    FaceTriangulation _triangulation;
    std::vector<int> _ring; // 0, 1, 2 ...
};

} // namespace Halvard::Orv::Checking
