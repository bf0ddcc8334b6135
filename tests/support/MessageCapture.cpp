#include "support/MessageCapture.h"

#include <atomic>
#include <ostream>

namespace OrvTest {

namespace {

std::atomic<MessageCapture *> innermost{nullptr};

const char *levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug";
    case QtInfoMsg:
        return "info";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "critical";
    case QtFatalMsg:
        return "fatal";
    }
    return "?";
}

} // namespace

bool operator==(const Message &first, const Message &second)
{
    return first.type == second.type && first.text == second.text;
}

std::ostream &operator<<(std::ostream &stream, const Message &message)
{
    return stream << levelName(message.type) << ": \"" << message.text << '"';
}

MessageCapture::MessageCapture()
    : _outer(innermost.exchange(this)), _previous(qInstallMessageHandler(&MessageCapture::handle))
{}

MessageCapture::~MessageCapture()
{
    innermost = _outer;
    qInstallMessageHandler(_previous);
}

std::vector<Message> MessageCapture::messages() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _messages;
}

std::vector<std::string> MessageCapture::texts(QtMsgType type) const
{
    std::vector<std::string> found;
    for (const Message &message : messages()) {
        if (message.type == type)
            found.push_back(message.text);
    }
    return found;
}

void MessageCapture::clear()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _messages.clear();
}

void MessageCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    MessageCapture *capture = innermost;
    if (!capture)
        return;
    std::string words = text.toStdString();
    // All that the libraries say is in the default category; another shows in the text.
    if (qstrcmp(context.category, "default") != 0)
        words = '[' + std::string(context.category ? context.category : "none") + "] " + words;
    const std::lock_guard<std::mutex> lock(capture->_mutex);
    capture->_messages.push_back({type, words});
}

} // namespace OrvTest
