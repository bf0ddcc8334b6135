/// \file
/// From face corners with an index per attribute to GPU vertices.
#pragma once

#include "Memory/GrowArray.h"
#include "Preparing/PreparingSizes.h"
#include "Scanning/OBJGeometry.h"

#include <QtCore/QtGlobal>

namespace Halvard::Orv {

class Work;

/// GPU vertices, all of them different in their bytes, numbered in the order in
/// which the corners of the file first use them.
struct WeldedCorners
{
    quint32 vertexCount = 0;
    /// GPU vertex number of each corner of the file.
    GrowArray<quint32> vertexOfCorner;
    /// Three, three and two floats per GPU vertex; nothing for an attribute that
    /// the file does not have. One float more may be read past the end of the
    /// positions.
    GrowArray<float> positions;
    GrowArray<float> normals;
    GrowArray<float> texCoords;
    /// Reusable memory, without elements: fresh memory would cost more.
    GrowArray<float> reusable;
};

/// Welds the corners of a whole file: what one GPU vertex per corner, welded by
/// its bytes, would give.
///
///     v indices   0 1 2  0 2 1        vertexOfCorner  0 1 2  0 2 3
///     vt indices  0 1 2  0 2 0   and  positions       v0 v1 v2 v1
///                                     texCoords       vt0 vt1 vt2 vt0
///
/// A corner whose index selects no value, or that is past the end of the
/// attribute's indices, has zeros there.
///
/// \param geometry has positions; gives up the values and indices of all
///        attributes.
/// \param work where there are many corners, its threads share the work; null: none.
WeldedCorners weldCorners(OBJGeometry &geometry, Work *work = nullptr,
                          const PreparingSizes &sizes = {});

} // namespace Halvard::Orv
