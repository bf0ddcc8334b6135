/// \file
/// Material and instance records as plain values.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <string>
#include <vector>

namespace Halvard::Orv {
class InstanceData;
}

namespace OrvTest {

/// A member of a record: bytes, or a texture's path, or a texture object.
struct Member
{
    QString name;
    QByteArray bytes;
    QString path;
    bool isTexture = false;

    /// The bytes as floats.
    std::vector<float> floats() const;
};

/// A material or an instance record. Members stand in the order in which they were first set.
struct Record
{
    QString plan;
    std::vector<Member> members;

    /// Sets a member to `value`, in place when there is one of that name.
    void set(const Member &value);
    /// The member `name`; one without a name or a value when there is none.
    Member member(const char *name) const;
};

Record recordOf(const Halvard::Orv::InstanceData &data);

/// A record as text, one member a line, sorted: "Kd 1 0 0", "map_Kd /a/b.png",
/// "map_Ks texture".
std::vector<std::string> described(const Record &record);
std::vector<std::string> described(const Halvard::Orv::InstanceData &data);

} // namespace OrvTest
