#include "UndrawnFaces.h"

#include "CommandLine.h"
#include "Messages.h"

#include <common/ModelFiles.h>
#include <common/Verdict.h>

#include <QtCore/QLocale>
#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv::Cli {

namespace {

using Reason = PreparationReport::Reason;

/// Of a file with a hundred thousand unknown materials.
constexpr size_t MostReasons = 20;

QString wordOf(Reason reason)
{
    switch (reason) {
    case Reason::MaterialNotDefined:
        return QStringLiteral("material-undefined");
    case Reason::TooFewCorners:
        return QStringLiteral("face-too-few-corners");
    case Reason::NotTriangulated:
        return QStringLiteral("face-not-triangulable");
    case Reason::NothingIsDrawn:
        return QStringLiteral("attribute-after-faces");
    }
    return {};
}

/// Ends the sentence "3 faces are not drawn: ".
QString explanation(const UndrawnFaces &faces)
{
    if (faces.reason == wordOf(Reason::MaterialNotDefined))
        return QStringLiteral("no library defines the material '%1'").arg(faces.subject);
    if (faces.reason == wordOf(Reason::TooFewCorners))
        return QStringLiteral("a face needs three corners");
    if (faces.reason == wordOf(Reason::NotTriangulated))
        return QStringLiteral("an outline that crosses itself, or has no area");
    return QStringLiteral("the file has no positions, or normals or texture coordinates that begin "
                          "behind the last face");
}

QString sentence(const UndrawnFaces &faces)
{
    const QString count = QLocale(QLocale::English).toString(faces.count);
    const QString place =
        faces.line > 0 ? QStringLiteral(", the first in line %1,").arg(faces.line) : QString();
    if (faces.count > 1)
        return QStringLiteral("%1 faces%2 are not drawn: %3.")
            .arg(count, place, explanation(faces));
    return QStringLiteral("The face%1 is not drawn: %2.")
        .arg(faces.line > 0 ? QStringLiteral(" in line %1").arg(faces.line) : QString(),
             explanation(faces));
}

} // namespace

std::vector<UndrawnFaces> undrawnFaces(const PreparationReport &report, const QString &fileName)
{
    std::vector<UndrawnFaces> result;
    std::vector<quint64> first;
    for (const PreparationReport::FacesNotDrawn &faces : report.facesNotDrawn) {
        result.push_back({wordOf(faces.reason), faces.subject, 0, faces.count});
        first.push_back(faces.firstFace);
    }
    if (first.empty())
        return result;
    const std::vector<qint64> lines = Apps::linesOfFaces(fileName, first);
    for (size_t i = 0; i < lines.size(); ++i)
        result[i].line = lines[i];
    return result;
}

void tell(const std::vector<UndrawnFaces> &faces, const QString &fileName)
{
    const size_t told = std::min(faces.size(), MostReasons);
    for (size_t i = 0; i < told; ++i)
        qWarning().noquote() << QStringLiteral("'%1': %2").arg(fileName, sentence(faces[i]));
    quint64 rest = 0;
    for (size_t i = told; i < faces.size(); ++i)
        rest += faces[i].count;
    if (rest > 0)
        qWarning("'%s': %s more faces are not drawn for %llu more reasons.",
                 qUtf8Printable(fileName), qUtf8Printable(QLocale(QLocale::English).toString(rest)),
                 static_cast<unsigned long long>(faces.size() - told));
}

ExitStatus verdictOn(const PreparationReport &report, const QString &fileName)
{
    const QString error = Apps::verdictOn(report, fileName);
    if (error.isEmpty())
        return Fine;
    Messages::flush();
    printError(error);
    return FileAtFault;
}

} // namespace Halvard::Orv::Cli
