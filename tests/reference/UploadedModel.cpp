#include "reference/UploadedModel.h"

#include <cctype>

namespace OrvReference {

void Record::set(const Member &value)
{
    for (Member &member : members) {
        if (member.name == value.name) {
            member = value;
            return;
        }
    }
    members.push_back(value);
}

QString UploadedModel::untouchedError()
{
    return QStringLiteral("untouched");
}

std::vector<OrvTest::Message> withoutAddresses(std::vector<OrvTest::Message> messages)
{
    for (OrvTest::Message &message : messages) {
        std::string &text = message.text;
        const std::size_t end = text.find(" Vertices Map ");
        if (message.type != QtDebugMsg || end == std::string::npos || text.compare(0, 2, "0x") != 0)
            continue;
        bool isAddress = end > 2;
        for (std::size_t i = 2; i < end; ++i)
            isAddress = isAddress && std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
        if (isAddress)
            text.erase(0, end + 1);
    }
    return messages;
}

} // namespace OrvReference
