/// \file
/// Opening the files that a model consists of.
#pragma once

#include <OrvModel/OrvModelExport.h>

class QFile;
class QString;

namespace Halvard::Orv {

/// Opens a file for reading, in text mode, without ever waiting for it.
///
/// Models come from strangers, who may name a pipe, on which an open waits for
/// somebody to write, or a device, which opening alone may set in motion. Regular
/// files are opened, and the null device, which is an empty file; anything else is
/// refused with a warning. What is missing or a directory is refused silently.
///
/// \param file not open. Forgets its name, since it is opened by number.
/// \param reason where not null, receives why it is not open: "no such file", "permission denied" ...
/// \return whether it is open now.
///
/// Exported for libOrvCheck, which opens what the loader opens; not installed.
ORVMODEL_EXPORT bool openInputFile(QFile &file, QString *reason = nullptr);

} // namespace Halvard::Orv
