#include "LargeMemory.h"

#include <QtCore/QtGlobal>

#include <cstdint>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Halvard::Orv {

void preferLargePages(void *memory, size_t bytes)
{
#if defined(Q_OS_LINUX) && defined(MADV_HUGEPAGE)
    /// Below, a block shares its pages with others, and has little to gain.
    constexpr size_t Large = size_t(4) << 20;
    if (bytes < Large)
        return;
    // Outwards to whole pages: the allocator's own words before the block must have
    // the same setting, or the block could no longer grow by moving its pages.
    static const auto pageBytes = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<uintptr_t>(memory);
    const uintptr_t begin = address / pageBytes * pageBytes;
    const uintptr_t end = (address + bytes + pageBytes - 1) / pageBytes * pageBytes;
    madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE); // may fail: so be it
#else
    Q_UNUSED(memory)
    Q_UNUSED(bytes)
#endif
}

} // namespace Halvard::Orv
