#include <OrvCore/InstanceDataCollection.h>

#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>

#include <QtCore/QtDebug>

#include <algorithm>
#include <climits>
#include <cstring>

namespace Halvard::Orv {

namespace {

// The bytes that `record` gives for `member`; may be shorter or longer than the member.
QByteArray bytesFor(const InstanceDataPlan::Member &member, const InstanceData &record)
{
    if (member.type != InstanceDataPlan::Texture)
        return record.value(member.name);
    const bool present = record.texture(member.name) || !record.texturePath(member.name).isEmpty();
    const quint32 flag = present ? 1 : 0;
    return QByteArray(reinterpret_cast<const char *>(&flag), sizeof(flag));
}

// `out` points to a record of zeros.
void packRecord(const InstanceDataPlan &plan, const InstanceData &record, char *out)
{
    for (const InstanceDataPlan::Member &member : plan.members()) {
        const QByteArray bytes = bytesFor(member, record);
        const int size = std::min(bytes.size(), InstanceDataPlan::sizeOf(member.type));
        std::memcpy(out + member.offset, bytes.constData(), static_cast<size_t>(size));
    }
}

} // namespace

InstanceDataCollection::InstanceDataCollection(const QString &name,
                                               const QList<InstanceData> &records)
    : _name(name), _records(records)
{}

QByteArray InstanceDataCollection::pack() const
{
    const InstanceDataPlan *plan = InstanceDataRegistry::Instance().plan(_name);
    if (!plan || _records.isEmpty())
        return {};
    const qint64 size = qint64(plan->stride()) * _records.size();
    if (size > INT_MAX) {
        qWarning("InstanceDataCollection \"%s\": %lld bytes are too many to pack",
                 qUtf8Printable(_name), size);
        return {};
    }
    QByteArray packed(static_cast<int>(size), '\0');
    char *out = packed.data();
    for (const InstanceData &record : _records) {
        packRecord(*plan, record, out);
        out += plan->stride();
    }
    return packed;
}

} // namespace Halvard::Orv
