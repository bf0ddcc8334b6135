/// \file
/// Faces that give no triangle, counted for a report.
#pragma once

#include <OrvModel/PreparationReport.h>

namespace Halvard::Orv {

/// Faces that are not drawn for one reason.
struct UndrawnFaces
{
    quint64 count = 0;
    quint64 first = 0; ///< the first of them in the file, if there is one

    void add(quint64 firstFace, quint64 faceCount)
    {
        if (count == 0 || firstFace < first)
            first = firstFace;
        count += faceCount;
    }
};

/// Adds the faces to those that the report has for the same reason and subject. None add nothing.
void addUndrawnFaces(PreparationReport &report, PreparationReport::Reason reason,
                     const QString &subject, const UndrawnFaces &faces);

} // namespace Halvard::Orv
