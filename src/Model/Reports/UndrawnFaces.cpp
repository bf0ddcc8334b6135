#include "Reports/UndrawnFaces.h"

#include <algorithm>

namespace Halvard::Orv {

void addUndrawnFaces(PreparationReport &report, PreparationReport::Reason reason,
                     const QString &subject, const UndrawnFaces &faces)
{
    if (faces.count == 0)
        return;
    const auto isSame = [&](const PreparationReport::FacesNotDrawn &entry) {
        return entry.reason == reason && entry.subject == subject;
    };
    const auto found =
        std::find_if(report.facesNotDrawn.begin(), report.facesNotDrawn.end(), isSame);
    if (found == report.facesNotDrawn.end()) {
        report.facesNotDrawn.append({reason, subject, faces.first, faces.count});
        return;
    }
    found->firstFace = std::min(found->firstFace, faces.first);
    found->count += faces.count;
}

} // namespace Halvard::Orv
