/// \file
/// A sign of life during long work.
#pragma once

#include <QtCore/QByteArray>

#include <condition_variable>
#include <mutex>
#include <thread>

class QString;

namespace Halvard::Orv::Cli {

/// Shows, while it lives, a moving bar with the seconds passed on stderr:
///
///     [    ====            ] loading beast.obj (226 MB), 3.2 s
///
/// Only on a terminal, only once half a second has passed, and not beside debug
/// messages, which would run through it. Nothing of it stays in the end. (How much
/// is done is not known: the library loads a model in one call.)
class Progress
{
public:
    explicit Progress(const QString &what);

    /// "loading beast.obj (226 MB)"
    static QString loadingOf(const QString &fileName);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

private:
    void run();

    QByteArray _what;
    std::mutex _mutex;
    std::condition_variable _wake;
    bool _isDone = false;
    std::thread _thread; // last: it uses the others
};

} // namespace Halvard::Orv::Cli
