#include "StandardStreams.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace Halvard::Orv::Cli {

void holdStandardStreams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF)
            continue;
        // The lowest number that is free: this one, since those below are taken.
        const int mode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        [[maybe_unused]] const int opened = ::open("/dev/null", mode);
    }
}

} // namespace Halvard::Orv::Cli
