#include "Verdict.h"

#include "ModelFiles.h"

#include <OrvModel/PreparationReport.h>

namespace Halvard::Orv::Apps {

QString verdictOn(const PreparationReport &report, const QString &fileName)
{
    if (report.faces > 0 && report.facesDrawn == 0)
        return QStringLiteral("None of the faces of '%1' is drawn.").arg(fileName);
    if (report.positions + report.normals + report.texCoords + report.faces == 0 &&
        hasNoOBJLine(fileName))
        return QStringLiteral("'%1' is no OBJ file: none of its lines begins with a keyword of "
                              "that format.")
            .arg(fileName);
    return {};
}

} // namespace Halvard::Orv::Apps
