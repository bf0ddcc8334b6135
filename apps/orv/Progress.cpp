#include "Progress.h"

#include "Messages.h"

#include <QtCore/QString>

#include <chrono>
#include <cstdio>
#include <string>

#include <unistd.h>

namespace Halvard::Orv::Cli {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto patience = std::chrono::milliseconds(500);
constexpr auto framePeriod = std::chrono::milliseconds(100);

/// A block that runs to and fro.
std::string barOfFrame(int frame)
{
    constexpr int width = 20;
    constexpr int blockWidth = 4;
    constexpr int way = width - blockWidth;
    const int step = frame % (2 * way);
    const int left = step <= way ? step : 2 * way - step;
    std::string bar(width, ' ');
    bar.replace(size_t(left), blockWidth, blockWidth, '=');
    return '[' + bar + ']';
}

} // namespace

Progress::Progress(const QString &what) : _what(what.toLocal8Bit())
{
    if (isatty(STDERR_FILENO) && !Messages::isVerbose())
        _thread = std::thread([this] { run(); });
}

Progress::~Progress()
{
    if (!_thread.joinable())
        return;
    {
        const std::lock_guard lock(_mutex);
        _isDone = true;
    }
    _wake.notify_one();
    _thread.join();
}

void Progress::run()
{
    const auto start = Clock::now();
    const auto isDone = [this] { return _isDone; };
    std::unique_lock lock(_mutex);
    if (_wake.wait_for(lock, patience, isDone))
        return;
    int frame = 0;
    do {
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        std::fprintf(stderr, "\r%s %s, %.1f s", barOfFrame(frame++).c_str(), _what.constData(),
                     seconds);
        std::fflush(stderr);
    } while (!_wake.wait_for(lock, framePeriod, isDone));
    // Back to the start of the line, and the line away.
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

} // namespace Halvard::Orv::Cli
