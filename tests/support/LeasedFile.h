/// \file
/// A file whose opening waits for the test.
#pragma once

#include <QtCore/QString>

#include <atomic>
#include <functional>
#include <thread>

namespace OrvTest {

/// Holds a lease on a file: who opens it waits. Then, on a thread of its own, it does
/// something, and lets go.
///
/// A library that a model names in its middle thus stops the loader there.
class LeasedFile
{
public:
    /// \param whenOpened done once, while the first that opens the file waits; before the
    /// end of this object's life it has come to its end.
    LeasedFile(const QString &fileName, std::function<void()> whenOpened);
    ~LeasedFile();
    LeasedFile(const LeasedFile &) = delete;
    LeasedFile &operator=(const LeasedFile &) = delete;

    /// False where the file system has no leases: nobody waits then.
    bool isHeld() const { return _held; }
    /// Whether somebody has waited, and `whenOpened` is being done or has been.
    bool wasOpened() const { return _opened; }

private:
    int _file;
    bool _held = false;
    std::atomic<bool> _opened{false};
    std::atomic<bool> _given{false};
    std::thread _thread;
};

} // namespace OrvTest
