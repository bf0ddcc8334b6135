#include "EventWaits.h"

#include "WindowTest.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <algorithm>
#include <cstring>

namespace OrvTest {

namespace {

QEvent::Type heartbeatType()
{
    static const auto Type = QEvent::Type(QEvent::registerEventType());
    return Type;
}

class Heartbeat : public QEvent
{
public:
    Heartbeat() : QEvent(heartbeatType()) {}
    const EventWaits::Clock::time_point posted = EventWaits::Clock::now();
};

double millisecondsBetween(EventWaits::Clock::time_point begin, EventWaits::Clock::time_point end)
{
    return std::chrono::duration<double, std::milli>(end - begin).count();
}

} // namespace

double EventWaits::Wait::milliseconds() const
{
    return millisecondsBetween(posted, delivered);
}

EventWaits::EventWaits(QObject &window) : _window(window)
{
    heartbeatType(); // registered before another thread asks
    addSpan("", 0);
    qApp->installEventFilter(this);
    _poster = std::thread([this] {
        Clock::time_point next = Clock::now();
        while (!_stop) {
            QCoreApplication::postEvent(&_window, new Heartbeat);
            ++_posted;
            next += std::chrono::milliseconds(5);
            std::this_thread::sleep_until(next);
        }
    });
}

EventWaits::~EventWaits()
{
    stop();
}

void EventWaits::mark(const QString &label)
{
    _label = label;
    addSpan("", 0);
}

void EventWaits::rename(size_t first, const QString &label)
{
    for (size_t i = first; i < _spans.size(); ++i)
        _spans[i].label = label;
}

size_t EventWaits::lastTimer() const
{
    const auto found = std::find_if(_spans.rbegin(), _spans.rend(), [](const Span &span) {
        return span.event == QEvent::Timer && std::strcmp(span.receiver, "QTimer") == 0;
    });
    return found == _spans.rend() ? 0 : size_t(_spans.rend() - found) - 1;
}

void EventWaits::stop()
{
    if (!_poster.joinable())
        return;
    _stop = true;
    _poster.join();
    waitFor([this] { return int(_waits.size()) == _posted; }, "the events that were posted");
    addSpan("", 0);
    qApp->removeEventFilter(this);
}

void EventWaits::addSpan(const char *receiver, int event)
{
    _spans.push_back({Clock::now(), _label, receiver, event});
}

bool EventWaits::eventFilter(QObject *watched, QEvent *event)
{
    addSpan(watched->metaObject()->className(), event->type());
    if (event->type() != heartbeatType())
        return false;
    _waits.push_back({static_cast<Heartbeat *>(event)->posted, Clock::now()});
    return true;
}

size_t EventWaits::longestSpan(const Wait &wait) const
{
    const auto after = [](Clock::time_point time, const Span &span) { return time < span.begin; };
    const auto begin = std::upper_bound(_spans.begin(), _spans.end(), wait.posted, after) - 1;
    const auto end = std::upper_bound(begin, _spans.end(), wait.delivered, after);
    size_t longest = size_t(begin - _spans.begin());
    for (auto span = begin; span != end; ++span) {
        const auto index = size_t(span - _spans.begin());
        if (milliseconds(index) > milliseconds(longest))
            longest = index;
    }
    return longest;
}

double EventWaits::milliseconds(size_t span) const
{
    return span + 1 < _spans.size()
               ? millisecondsBetween(_spans[span].begin, _spans[span + 1].begin)
               : 0;
}

} // namespace OrvTest
