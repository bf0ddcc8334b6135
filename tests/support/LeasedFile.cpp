#include "support/LeasedFile.h"

#include <QtCore/QFile>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace OrvTest {

LeasedFile::LeasedFile(const QString &fileName, std::function<void()> whenOpened)
    : _file(::open(QFile::encodeName(fileName).constData(), O_RDWR | O_CLOEXEC))
{
    std::signal(SIGIO, SIG_IGN); // the kernel's word that somebody waits
    _held = fcntl(_file, F_SETLEASE, F_WRLCK) == 0;
    if (!_held)
        return;
    _thread = std::thread([this, whenOpened = std::move(whenOpened)] {
        while (!_given && fcntl(_file, F_GETLEASE) == F_WRLCK)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (!_given) {
            _opened = true;
            whenOpened();
        }
        fcntl(_file, F_SETLEASE, F_UNLCK);
    });
}

LeasedFile::~LeasedFile()
{
    _given = true;
    if (_thread.joinable())
        _thread.join();
    if (_file >= 0)
        ::close(_file);
}

} // namespace OrvTest
