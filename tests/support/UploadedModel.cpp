#include "support/UploadedModel.h"

#include <cctype>

namespace OrvTest {

std::vector<float> Bundle::values(const char *attribute) const
{
    const auto found = attributes.find(QLatin1String(attribute));
    return found == attributes.end() ? std::vector<float>() : found->second.values;
}

int Bundle::triangleCount() const
{
    int count = 0;
    for (const Command &command : commands)
        count += static_cast<int>(command.count / 3);
    return count;
}

std::vector<QString> Bundle::materialNames() const
{
    std::vector<QString> names;
    for (const Command &command : commands)
        names.push_back(command.material);
    return names;
}

QString UploadedModel::untouchedError()
{
    return QStringLiteral("untouched");
}

const Bundle &UploadedModel::bundle() const
{
    static const Bundle none;
    return bundles.empty() ? none : bundles.front();
}

std::vector<std::string> UploadedModel::warnings() const
{
    std::vector<std::string> texts;
    for (const Message &message : messages) {
        if (message.type == QtWarningMsg)
            texts.push_back(message.text);
    }
    return texts;
}

std::vector<Message> withoutAddresses(std::vector<Message> messages)
{
    for (Message &message : messages) {
        std::string &text = message.text;
        const std::size_t end = text.find(" Vertices Map ");
        if (message.type != QtDebugMsg || end == std::string::npos || text.compare(0, 2, "0x") != 0)
            continue;
        bool isAddress = end > 2;
        for (std::size_t i = 2; i < end; ++i)
            isAddress = isAddress && std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
        if (isAddress)
            text.replace(0, end, "(address)");
    }
    return messages;
}

} // namespace OrvTest
