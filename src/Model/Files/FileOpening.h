/// \file
/// Opening files that strangers name, without waiting for them.
#pragma once

#include <QtCore/QIODevice>

class QFile;

namespace Halvard::Orv {

/// Why a file is not open.
enum class FileTrouble
{
    None,
    Missing, ///< Nothing of that name.
    Directory,
    NotRegular, ///< A pipe, a socket or a device other than the null device.
    Busy,       ///< Another program held a lease on it for a minute.
    Unreadable  ///< `file` knows why, as the system says it.
};

/// Opens a file without ever waiting for it, and says nothing.
///
/// Models come from strangers, who may name a pipe, on which an open waits for somebody to
/// write, or a device, which opening alone may set in motion. Regular files are opened, and
/// the null device, which is an empty file.
///
/// \param file not open. Forgets its name, since it is opened by number.
/// \param mode for reading.
FileTrouble openWithoutWaiting(QFile &file, QIODevice::OpenMode mode);

/// Whether an open file is one that the kernel makes up while it is read, as those below
/// /proc and /sys are. Such a file looks regular, and may have no end.
bool isMadeUpByTheKernel(const QFile &file);

} // namespace Halvard::Orv
