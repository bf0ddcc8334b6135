/// \file
/// Findings on models as text and as JSON.
#pragma once

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QString>
#include <QtCore/QVector>

class QIODevice;

namespace Halvard::Orv::Cli {

/// One line for each finding, as editors jump to them:
///
///     FILE:LINE: SEVERITY: MESSAGE [CODE]
///
/// No character of it changes how a terminal shows the rest.
/// \param most of the findings, the most severe first; the others are counted in a last line.
///        0 for all.
QString findingLines(const ModelFindings &model, int most);

/// Writes the findings as docs/schemas/check.schema.json describes them.
/// \param most as for findingLines(), in each model.
/// \return whether all of it reached the device.
bool writeFindings(QIODevice &device, const QVector<ModelFindings> &models, int most);

} // namespace Halvard::Orv::Cli
