/// \file
/// Which faces of a file are not drawn, and why.
#pragma once

#include "ExitStatus.h"

#include <OrvModel/PreparationReport.h>

#include <QtCore/QString>

#include <vector>

namespace Halvard::Orv::Cli {

/// Faces that are not drawn for one reason.
struct UndrawnFaces
{
    QString reason;  ///< a word for programs, such as "material-undefined"
    QString subject; ///< a material's name; else empty
    qint64 line = 0; ///< of the first of them, counted from 1; 0 where it cannot be told
    quint64 count = 0;
};

/// Reads the file once more, up to the last of the lines, where there are such faces.
std::vector<UndrawnFaces> undrawnFaces(const PreparationReport &report, const QString &fileName);

/// Says on stderr why faces are not drawn, in a sentence for each reason.
void tell(const std::vector<UndrawnFaces> &faces, const QString &fileName);

/// Whether there is anything to show: not of a file whose faces are all not drawn, nor of one that
/// is no OBJ file. Says so.
ExitStatus verdictOn(const PreparationReport &report, const QString &fileName);

} // namespace Halvard::Orv::Cli
