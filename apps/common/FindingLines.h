/// \file
/// Findings and changes of models as lines of text.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv {
struct Finding;
struct RepairChange;
} // namespace Halvard::Orv

namespace Halvard::Orv::Apps {

/// What a finding says in one line, the faces that it costs included: they are what most people
/// look for. Printable.
QString findingSentence(const Finding &finding);

/// The same with all that tells where and what it is, as compilers write it, without a line feed:
///
///     FILE:LINE: SEVERITY: MESSAGE [CODE]
QString findingLine(const Finding &finding);

/// What was done and how often. Printable.
QString changeSentence(const RepairChange &change);

/// A change in the form of a finding, without a line feed:
///
///     FILE:LINE: fixed: MESSAGE [CODE]
///
/// \param isDryRun says "to fix" instead.
QString changeLine(const RepairChange &change, bool isDryRun);

} // namespace Halvard::Orv::Apps
