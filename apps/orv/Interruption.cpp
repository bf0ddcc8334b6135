#include "Interruption.h"

#include <QtCore/QByteArray>
#include <QtCore/QFileDevice>

#include <climits>
#include <csignal>

#include <unistd.h>

namespace Halvard::Orv::Cli {

namespace {

constexpr int InterruptedStatus = 128; // plus the number of the signal

/// Written before `hasUnfinishedFile` is set, and read by the handler only when it is.
char unfinishedPath[PATH_MAX + 1];
volatile std::sig_atomic_t hasUnfinishedFile = 0;

/// Calls nothing but what a signal handler may call. Waiting for the library to come to an end
/// would leave nothing else behind: the system takes memory and threads back.
extern "C" void end(int signal)
{
    if (hasUnfinishedFile)
        ::unlink(unfinishedPath);
    static const char wipe[] = "\r\033[K";
    if (::isatty(STDERR_FILENO) && ::write(STDERR_FILENO, wipe, sizeof wipe - 1) < 0) {
        // Nobody is left to be told.
    }
    ::_exit(InterruptedStatus + signal);
}

} // namespace

void endOnInterruption()
{
    struct sigaction action = {};
    action.sa_handler = end;
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM}) {
        struct sigaction before;
        // A program in the background of a script is not to be interrupted.
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }
}

UnfinishedFile::UnfinishedFile(const QFileDevice &file)
{
    // The name of the file until it is finished is known to the system only. Where it has none, as on
    // most file systems of Linux, there is nothing to remove either.
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(file.handle());
    const ssize_t length = ::readlink(link.constData(), unfinishedPath, PATH_MAX);
    if (length <= 0)
        return;
    unfinishedPath[length] = '\0';
    hasUnfinishedFile = 1;
}

UnfinishedFile::~UnfinishedFile()
{
    hasUnfinishedFile = 0;
}

} // namespace Halvard::Orv::Cli
