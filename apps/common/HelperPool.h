/// \file
/// Threads that help to prepare models.
#pragma once

class QThreadPool;

namespace Halvard::Orv::Apps {

/// One pool for the process, which is never destroyed: Qt counts a thread that could not be
/// started, for want of memory or of threads, as one at work, and a pool that is destroyed waits
/// for those without end.
QThreadPool &helperPool();

} // namespace Halvard::Orv::Apps
