/// \file
/// The polygon rules written down once more, step by step and without any short
/// cut: the slower truth that the library's geometry is compared with.
#pragma once

#include <QtGui/QVector2D>
#include <QtGui/QVector3D>

#include <vector>

namespace OrvTest {

/// What the rules say of one corner of a ring.
struct PlainCorner
{
    float crossZ;
    float cosAngle;
    bool isEar;
};

/// Corner `corner` of `points` between its neighbours `next` and `prev`, looking
/// at the active corners only.
PlainCorner plainCorner(const std::vector<QVector2D> &points, const std::vector<bool> &active,
                        int corner, int next, int prev);

/// Three positions a triangle; empty where the rules fail.
std::vector<int> plainTriangulate2D(const std::vector<QVector2D> &points, bool clockwise);

/// Normal of a face by the sum of cross products of successive positions.
QVector3D plainFaceNormal(const std::vector<int> &face, const std::vector<float> &positions);

/// Positions within the face, three a triangle; empty where the rules fail.
std::vector<int> plainTriangulate3D(const QVector3D &normal, const std::vector<int> &face,
                                    const std::vector<float> &positions);

/// One normal per vertex of a mesh of whole triangles with valid indices.
std::vector<float> plainVertexNormals(const std::vector<float> &positions,
                                      const std::vector<unsigned> &indices);

} // namespace OrvTest
