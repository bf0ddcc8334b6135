#include <OrvModel/PolygonDump.h>

#include "Lanes/FloatingPointState.h"

#include <QtCore/QFile>
#include <QtCore/QTextStream>
#include <QtGui/QVector2D>

namespace Halvard::Orv {

namespace {

/// Opens the file for a dump, or says that it cannot.
bool openForDump(QFile &file)
{
    if (file.open(QIODevice::WriteOnly))
        return true;
    qWarning("Couldn't write obj file %s", file.fileName().toLocal8Bit().constData());
    return false;
}

/// The plane coordinates only: a viewer fills in z, and people read x and y.
void writePoints(QTextStream &out, int count, QVector2D const *points)
{
    for (int i = 0; i < count; ++i)
        out << "v " << points[i].x() << " " << points[i].y() << Qt::endl;
}

} // namespace

void DumpAsOBJPolygon(QString const &fileName, int count, QVector2D const *points)
{
    const FloatingPointState state;
    QFile file(fileName);
    if (!openForDump(file))
        return;
    QTextStream out(&file);
    writePoints(out, count, points);
    out << "f ";
    for (int i = 1; i <= count; ++i)
        out << " " << i;
    out << Qt::endl;
}

void DumpAsOBJTriangles(QString const &fileName, int count, QVector2D const *points,
                        QVector<int> const &triangles)
{
    const FloatingPointState state;
    QFile file(fileName);
    if (!openForDump(file))
        return;
    QTextStream out(&file);
    writePoints(out, count, points);
    for (int t = 0; t + 2 < triangles.size(); t += 3)
        out << "f " << triangles[t] + 1 << " " << triangles[t + 1] + 1 << " "
            << triangles[t + 2] + 1 << Qt::endl;
}

} // namespace Halvard::Orv
