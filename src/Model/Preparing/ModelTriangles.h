/// \file
/// The triangles of a model, and with them its normals, on one thread or several.
#pragma once

#include "Preparing/FacePlan.h"
#include "Preparing/PreparingSizes.h"
#include "Reports/UndrawnFaces.h"
#include "Scanning/OBJGeometry.h"

#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {

class ParallelNormals;
class VertexNormalSums;
class Work;
struct WorkSteps;

/// What came of cutting the faces.
struct CutFaces
{
    std::vector<size_t> indexCounts; ///< per group
    size_t indexCount = 0;           ///< of all groups
    UndrawnFaces withTooFewCorners;
    UndrawnFaces notTriangulated;
};

/// Cuts the faces of a plan; see FaceTriangles.
class ModelTriangles
{
public:
    /// \param corners vertex of each corner of the file.
    /// \param out where the triangles go; may be `corners` where FaceTriangles allows it.
    ModelTriangles(const CornerCounts &counts, const FacePlan &plan, size_t groupCount,
                   const quint32 *corners, const float *positions, quint32 *out);

    /// On the calling thread.
    /// \param normals receives the triangles; may be null.
    CutFaces cut(VertexNormalSums *normals, Work &work) const;

    /// On several threads, each of which takes one of some parts of successive tasks after the
    /// other. Messages come when all is done, in the order of the faces.
    /// \param normals begun with the same parts; may be null.
    CutFaces cutInParallel(size_t partCount, ParallelNormals *normals, Work &work) const;

private:
    struct PartResult;

    size_t outBegin(size_t part, size_t partCount) const;
    void cutPart(size_t part, size_t partCount, ParallelNormals *normals, Work &work,
                 WorkSteps &steps, PartResult &result) const;

    const CornerCounts &_counts;
    const FacePlan &_plan;
    const size_t _groupCount;
    const quint32 *const _corners;
    const float *const _positions;
    quint32 *const _out;
};

} // namespace Halvard::Orv
