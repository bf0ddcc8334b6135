#include "DriverRoom.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include <sys/mman.h>

namespace Halvard::Orv::Cli {

namespace {

constexpr size_t MB = size_t(1) << 20;

/// One for each core, of which Mesa uses 16, and one for what it does meanwhile.
unsigned driverThreads()
{
    return std::clamp(std::thread::hardware_concurrency(), 1u, 16u) + 1;
}

/// Asks for addresses only, and gives them back: memory that is not touched costs nothing.
bool hasAddresses(size_t bytes)
{
    void *const address =
        ::mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (address == MAP_FAILED)
        return false;
    ::munmap(address, bytes);
    return true;
}

/// Whether so many threads can be there at once.
bool canStartThreads(unsigned count)
{
    std::mutex mutex;
    std::condition_variable canEnd;
    bool isOver = false;
    std::vector<std::thread> threads;
    threads.reserve(count);
    try {
        while (threads.size() < count)
            threads.emplace_back([&] {
                std::unique_lock<std::mutex> lock(mutex);
                canEnd.wait(lock, [&] { return isOver; });
            });
    } catch (const std::system_error &) {
        // As many as there are.
    }
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOver = true;
    }
    canEnd.notify_all();
    for (std::thread &thread : threads)
        thread.join();
    return threads.size() == count;
}

} // namespace

bool hasRoomForContext()
{
    // What Mesa's software driver takes of addresses; a thread has a stack, and a piece of the heap.
    constexpr size_t Context = 440 * MB;
    constexpr size_t Thread = 80 * MB;
    if (!hasAddresses(Context))
        return false;
    const unsigned threads = driverThreads();
    static const char LimitOfThreads[] = "LP_NUM_THREADS";
    if (!qEnvironmentVariableIsSet(LimitOfThreads) &&
        !(hasAddresses(Context + threads * Thread) && canStartThreads(threads)))
        qputenv(LimitOfThreads, "0");
    return true;
}

bool hasRoomForPicture(const QSize &size)
{
    // Shaders are compiled on the way. A pixel has four samples of colour and depth, and stands
    // in three pictures: resolved, read, and turned over.
    constexpr size_t Shaders = 200 * MB;
    constexpr size_t Pixel = 4 * (4 + 4) + 3 * 4;
    return hasAddresses(Shaders + size_t(size.width()) * size_t(size.height()) * Pixel);
}

} // namespace Halvard::Orv::Cli
