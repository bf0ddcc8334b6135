#include <OrvCore/InstanceData.h>

#include <QtCore/QSharedData>
#include <QtCore/QVector>
#include <QtCore/QtDebug>

#include <climits>

namespace Halvard::Orv {

namespace {

struct Member
{
    QString name;
    QByteArray bytes;
    QString texturePath;
    Texture *texture = nullptr;
};

} // namespace

class InstanceDataRecord : public QSharedData
{
public:
    QString planName;
    // A record has about a dozen members, and their order is part of it: a list beats a hash.
    QVector<Member> members;

    const Member *find(const QString &name) const
    {
        for (const Member &member : members) {
            if (member.name == name)
                return &member;
        }
        return nullptr;
    }

    // The place of `name` with whatever it held before gone: the last value set wins.
    Member &cleared(const QString &name)
    {
        Member fresh;
        fresh.name = name;
        for (Member &member : members) {
            if (member.name == name)
                return member = fresh;
        }
        members.append(fresh);
        return members.last();
    }
};

InstanceData::InstanceData() : InstanceData(QString()) {}

InstanceData::InstanceData(const QString &planName) : _record(new InstanceDataRecord)
{
    _record->planName = planName;
}

InstanceData::InstanceData(const InstanceData &other) = default;

// A moved-from record must still answer, so moving takes a share instead of leaving a null behind.
// NOLINTNEXTLINE(performance-move-constructor-init)
InstanceData::InstanceData(InstanceData &&other) noexcept : _record(other._record) {}

InstanceData &InstanceData::operator=(const InstanceData &other) = default;

InstanceData &InstanceData::operator=(InstanceData &&other) noexcept
{
    _record.swap(other._record);
    return *this;
}

InstanceData::~InstanceData() = default;

QString InstanceData::name() const
{
    return _record->planName;
}

void InstanceData::set(const QString &member, const void *value, unsigned long size)
{
    if (size > INT_MAX || (!value && size > 0)) {
        qWarning("InstanceData::set: no %lu bytes to copy for member \"%s\"", size,
                 qUtf8Printable(member));
        return;
    }
    // Copied before the record is touched: `value` may point into it.
    const QByteArray bytes(static_cast<const char *>(value), static_cast<int>(size));
    _record->cleared(member).bytes = bytes;
}

void InstanceData::setTexture(const QString &member, const QString &path)
{
    _record->cleared(member).texturePath = path;
}

void InstanceData::setTexture(const QString &member, Texture *texture)
{
    _record->cleared(member).texture = texture;
}

void InstanceData::clear()
{
    _record->members.clear();
}

QByteArray InstanceData::value(const QString &member) const
{
    const Member *found = _record->find(member);
    return found ? found->bytes : QByteArray();
}

QString InstanceData::texturePath(const QString &member) const
{
    const Member *found = _record->find(member);
    return found ? found->texturePath : QString();
}

Texture *InstanceData::texture(const QString &member) const
{
    const Member *found = _record->find(member);
    return found ? found->texture : nullptr;
}

QStringList InstanceData::members() const
{
    QStringList names;
    for (const Member &member : _record->members)
        names.append(member.name);
    return names;
}

} // namespace Halvard::Orv
