#include "Reports/WeldingReport.h"

#include "Reports/CurrentReport.h"

#include <QtCore/QtDebug>

namespace Halvard::Orv {

void reportWelding(const void *builder, int vertexCount, int newVertexCount,
                   unsigned long indexBytes)
{
    const int kept =
        vertexCount == 0 ? 0 : static_cast<int>(qint64(newVertexCount) * 100 / vertexCount);
    qDebug("%p Vertices Map %8d -> %8d d %8d (%3d %%) %d", builder, vertexCount, newVertexCount,
           vertexCount - newVertexCount, kept, static_cast<int>(indexBytes));
    if (PreparationReport *report = currentReport()) {
        report->verticesBeforeWelding = static_cast<quint64>(vertexCount);
        report->vertices = static_cast<quint64>(newVertexCount);
    }
}

} // namespace Halvard::Orv
