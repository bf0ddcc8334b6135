/// \file
/// A sign of life during long work.
#pragma once

#include <QtCore/QByteArray>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

class QString;

namespace Halvard::Orv::Cli {

/// Shows, while it lives, a moving bar with the seconds passed on stderr:
///
///     [========            ] loading beast.obj (226 MB), 3.2 s
///
/// The bar grows where it is told how much is done; before, and where nobody knows, a block runs to
/// and fro. Only on a terminal, only once half a second has passed, and not beside debug
/// messages, which would run through it. Nothing of it stays in the end.
class Progress
{
public:
    explicit Progress(const QString &what);

    /// "loading beast.obj (226 MB)"
    static QString loadingOf(const QString &fileName);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// How much is done, from 0 to 1.
    void setFraction(double fraction) { _fraction = fraction; }

private:
    void run();

    QByteArray _what;
    std::atomic<double> _fraction{-1.0}; // negative: unknown
    std::mutex _mutex;
    std::condition_variable _wake;
    bool _isDone = false;
    std::thread _thread; // last: it uses the others
};

} // namespace Halvard::Orv::Cli
