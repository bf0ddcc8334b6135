#include "Progress.h"

#include "Messages.h"
#include "PrintedText.h"

#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QString>

#include <chrono>
#include <cstdio>
#include <string>

#include <unistd.h>

namespace Halvard::Orv::Cli {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto Patience = std::chrono::milliseconds(500);
constexpr auto FramePeriod = std::chrono::milliseconds(100);

constexpr int Width = 20;

/// A block that runs to and fro.
std::string barOfFrame(int frame)
{
    constexpr int BlockWidth = 4;
    constexpr int Way = Width - BlockWidth;
    const int step = frame % (2 * Way);
    const int left = step <= Way ? step : 2 * Way - step;
    std::string bar(Width, ' ');
    bar.replace(size_t(left), BlockWidth, BlockWidth, '=');
    return '[' + bar + ']';
}

std::string barOfFraction(double fraction)
{
    const auto filled = static_cast<size_t>(fraction * Width);
    return '[' + std::string(filled, '=') + std::string(Width - filled, ' ') + ']';
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

QString Progress::loadingOf(const QString &fileName)
{
    if (fileName == QLatin1String("-"))
        return QStringLiteral("loading standard input");
    const QFileInfo file(fileName);
    return QStringLiteral("loading %1 (%2)")
        .arg(printed(file.fileName()), QLocale(QLocale::English).formattedDataSize(file.size()));
}

void Progress::run()
{
    const auto start = Clock::now();
    const auto isDone = [this] { return _isDone; };
    std::unique_lock lock(_mutex);
    if (_wake.wait_for(lock, Patience, isDone))
        return;
    int frame = 0;
    do {
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        const double fraction = _fraction;
        const std::string bar = fraction < 0.0 ? barOfFrame(frame++) : barOfFraction(fraction);
        std::fprintf(stderr, "\r%s %s, %.1f s", bar.c_str(), _what.constData(), seconds);
        std::fflush(stderr);
    } while (!_wake.wait_for(lock, FramePeriod, isDone));
    // Back to the start of the line, and the line away.
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

} // namespace Halvard::Orv::Cli
