#include "support/ModelRecord.h"

#include <OrvCore/InstanceData.h>

#include <algorithm>
#include <cstring>
#include <sstream>

namespace OrvTest {

using namespace Halvard::Orv;

std::vector<float> Member::floats() const
{
    std::vector<float> values(static_cast<std::size_t>(bytes.size()) / sizeof(float));
    if (!values.empty())
        std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(float));
    return values;
}

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

Member Record::member(const char *name) const
{
    for (const Member &member : members) {
        if (member.name == QLatin1String(name))
            return member;
    }
    return {};
}

Record recordOf(const InstanceData &data)
{
    Record record{data.name(), {}};
    for (const QString &name : data.members())
        record.members.push_back(
            {name, data.value(name), data.texturePath(name), data.texture(name) != nullptr});
    return record;
}

std::vector<std::string> described(const Record &record)
{
    std::vector<std::string> lines;
    for (const Member &member : record.members) {
        std::ostringstream line;
        line << member.name.toStdString();
        if (member.isTexture)
            line << " texture";
        else if (!member.path.isNull())
            line << ' ' << member.path.toStdString();
        else
            for (const float value : member.floats())
                line << ' ' << value;
        lines.push_back(line.str());
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> described(const InstanceData &data)
{
    return described(recordOf(data));
}

} // namespace OrvTest
