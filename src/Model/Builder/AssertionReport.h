/// \file
/// How the builder reports a condition that does not hold.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv {

/// Logs "[ModelBuilder:<line>] [ !! ] Assertion '<expression>' failed: <detail>"
/// at critical level. Never stops anything: the caller goes on as if the
/// condition held.
///
/// \param line identifies the condition to those who search logs for it: a
///        constant of the report, not the line of the call.
/// \param expression text of the condition; each "%" is written as "\%".
void reportFailedAssertion(int line, const char *expression, const QString &detail);

} // namespace Halvard::Orv
