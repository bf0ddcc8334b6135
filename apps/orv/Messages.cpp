#include "Messages.h"

#include "PrintedText.h"

#include <QtCore/QLocale>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMap>
#include <QtCore/QMutex>
#include <QtCore/QString>

#include <atomic>
#include <cstdio>
#include <vector>

namespace Halvard::Orv::Cli {

namespace {

/// So many different texts are held; what comes beyond is only counted.
constexpr size_t HeldAtMost = 1000;

struct Held
{
    QString text;
    qint64 count;
};

struct State
{
    QMutex mutex;
    std::vector<Held> held;
    QMap<QString, size_t> positions; // in `held`, by text; ordered, for texts hold names
    qint64 leftOut = 0;
    std::atomic<bool> isVerbose = false;
    QtMessageHandler previous = nullptr;
};

State &state()
{
    static State instance;
    return instance;
}

void print(const QString &text)
{
    std::fprintf(stderr, "orv: %s\n", text.toLocal8Bit().constData());
}

/// The mutex is held.
void hold(const QString &text)
{
    State &s = state();
    const auto known = s.positions.constFind(text);
    if (known != s.positions.constEnd()) {
        ++s.held[*known].count;
    } else if (s.held.size() < HeldAtMost) {
        s.positions.insert(text, s.held.size());
        s.held.push_back({text, 1});
    } else {
        ++s.leftOut;
    }
}

/// What the PNG reader has to say of colour profiles and the like changes nothing. Where it
/// cannot read an image, somebody else says so with the name of the file. Where no thread can be
/// started, the calling one does the work. A name with a zero byte is that of no file, which is
/// said with the name.
bool isOfNoConsequence(const QString &text)
{
    return text.startsWith(QLatin1String("libpng ")) ||
           text.startsWith(QLatin1String("QImage: out of memory")) ||
           text.startsWith(QLatin1String("QThread::start: Thread ")) ||
           text == QLatin1String("Broken filename passed to function");
}

void handle(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if ((type == QtWarningMsg || type == QtCriticalMsg) && isOfNoConsequence(text))
        type = QtDebugMsg;
    switch (type) {
    case QtDebugMsg:
    case QtInfoMsg:
        if (state().isVerbose)
            print(QStringLiteral("debug: ") + printedMessage(text));
        return;
    case QtFatalMsg: // Qt ends the process after this call
        Messages::flush();
        print(QStringLiteral("error: ") + printedMessage(text));
        return;
    case QtWarningMsg:
    case QtCriticalMsg:
        break;
    }
    const QMutexLocker lock(&state().mutex);
    hold(QLatin1String(type == QtWarningMsg ? "warning: " : "error: ") + printedMessage(text));
}

} // namespace

Messages::Messages()
{
    // A system-wide logging configuration may have turned some of them off.
    QLoggingCategory::setFilterRules(QStringLiteral("default=true"));
    state().previous = qInstallMessageHandler(handle);
}

Messages::~Messages()
{
    flush();
    qInstallMessageHandler(state().previous);
}

void Messages::setVerbose(bool isVerbose)
{
    state().isVerbose = isVerbose;
}

bool Messages::isVerbose()
{
    return state().isVerbose;
}

void Messages::flush()
{
    State &s = state();
    const QMutexLocker lock(&s.mutex);
    const QLocale english(QLocale::English);
    for (const Held &message : s.held) {
        if (message.count == 1)
            print(message.text);
        else
            print(
                QStringLiteral("%1 (%2 times)").arg(message.text, english.toString(message.count)));
    }
    if (s.leftOut > 0)
        print(QStringLiteral("warning: %1 further messages are left out.")
                  .arg(english.toString(s.leftOut)));
    s.held.clear();
    s.positions.clear();
    s.leftOut = 0;
}

} // namespace Halvard::Orv::Cli
