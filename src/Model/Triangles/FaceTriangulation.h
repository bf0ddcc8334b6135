/// \file
/// The spatial triangulation behind Triangulate3D(), with scratch memory that a
/// caller of many faces keeps.
#pragma once

#include "Triangles/Ears/EarClipping.h"

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QVector>
#include <QtGui/QVector2D>

class QVector3D;

namespace Halvard::Orv {

/// Triangulates faces one after the other without allocating for each.
///
/// Exported for libOrvCheck, which predicts what becomes of faces; not installed.
class ORVMODEL_EXPORT FaceTriangulation
{
public:
    /// Cuts one face; the arguments are those of Triangulate3D().
    /// \return positions within the face, three a triangle, valid until the next
    ///         call.
    const QVector<int> &triangulate(QVector3D const &normal, int count, int const *indices,
                                    float const *positions);
    /// As above with the normal computed from the ring.
    const QVector<int> &triangulate(int count, int const *indices, float const *positions);

    /// As EarClipping::setQuiet().
    void setQuiet(bool isQuiet) { _clipping.setQuiet(isQuiet); }

private:
    QVector<QVector2D> _projected;
    EarClipping _clipping;
    QVector<int> _triangles;
};

} // namespace Halvard::Orv
