/// \file
/// How long events wait for the thread of the window.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace OrvTest {

/// Posts an event every five milliseconds from a thread of its own, and records when each one is
/// delivered. Beside that, everything that the application's thread does in between is recorded as
/// spans, so that a wait can be told by what it waited for.
class EventWaits : public QObject
{
public:
    using Clock = std::chrono::steady_clock;

    /// From one sign of life of the thread to the next.
    struct Span
    {
        Clock::time_point begin;
        QString label; ///< of what the program is about
        /// What the thread was given to do: the receiver's class and the event's number.
        const char *receiver;
        int event;
    };

    /// An event that was posted, and delivered.
    struct Wait
    {
        Clock::time_point posted;
        Clock::time_point delivered;
        double milliseconds() const;
    };

    /// \param window receives the events; outlives this.
    explicit EventWaits(QObject &window);
    ~EventWaits() override;

    /// From now on, spans have this label.
    void mark(const QString &label);
    /// Gives all spans from this one on another label.
    void rename(size_t first, const QString &label);
    /// The span that began with the last event of a timer.
    size_t lastTimer() const;
    /// Ends the posting, and waits for what has been posted.
    void stop();

    const std::vector<Wait> &waits() const { return _waits; }
    const std::vector<Span> &spans() const { return _spans; }
    int posted() const { return _posted; }
    /// The longest span that `wait` waited through, at least in part.
    size_t longestSpan(const Wait &wait) const;
    double milliseconds(size_t span) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addSpan(const char *receiver, int event);

    QObject &_window;
    QString _label;
    std::vector<Wait> _waits;
    std::vector<Span> _spans;
    std::atomic<int> _posted{0};
    std::atomic<bool> _stop{false};
    std::thread _poster;
};

} // namespace OrvTest
