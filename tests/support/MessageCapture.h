/// \file
/// What the code under test says through Qt's message logger.
#pragma once

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

namespace OrvTest {

/// One logged message, as the handler received it: no pattern applied. A message of
/// another category than "default" has it in front: "[qt.core] text".
struct Message
{
    QtMsgType type;
    std::string text;
};

bool operator==(const Message &first, const Message &second);
std::ostream &operator<<(std::ostream &stream, const Message &message);

/// Collects every Qt message of the process while it lives, instead of printing
/// them. Messages may come from any thread. Captures nest: the innermost hears.
class MessageCapture
{
public:
    MessageCapture();
    ~MessageCapture();
    MessageCapture(const MessageCapture &) = delete;
    MessageCapture &operator=(const MessageCapture &) = delete;

    std::vector<Message> messages() const;
    /// The texts of one level only, in the order logged.
    std::vector<std::string> texts(QtMsgType type) const;
    void clear();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    mutable std::mutex _mutex; // Qt's own is invisible to the thread sanitizer
    std::vector<Message> _messages;
    MessageCapture *_outer;
    QtMessageHandler _previous;
};

} // namespace OrvTest
