/// \file
/// Independent tasks on the calling thread and on those that a pool has idle.
#pragma once

#include <cstddef>
#include <functional>

class QThreadPool;

namespace Halvard::Orv::Render {

/// Calls task(number) once for every number below `count`, and returns when all have returned.
/// The calling thread takes part. No thread is waited for that has not begun: where the system
/// has no more threads, a pool keeps one that never will. After an exception no more tasks are
/// begun, and the calling thread throws the first one.
/// \param pool null: the calling thread alone.
void shareTasks(std::size_t count, QThreadPool *pool,
                const std::function<void(std::size_t number)> &task);

} // namespace Halvard::Orv::Render
