#include "Scanning/OBJGeometry.h"

namespace Halvard::Orv {

QMap<quint32, quint64> CornerCounts::histogram() const
{
    quint64 facesBySmallCount[Escape + 1] = {};
    for (size_t face = 0; face < small.size(); ++face)
        ++facesBySmallCount[small[face]];
    QMap<quint32, quint64> faces;
    for (quint32 corners = 0; corners < Escape; ++corners) {
        if (facesBySmallCount[corners] > 0)
            faces.insert(corners, facesBySmallCount[corners]);
    }
    for (size_t face = 0; face < large.size(); ++face)
        ++faces[large[face]];
    return faces;
}

} // namespace Halvard::Orv
