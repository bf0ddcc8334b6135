/// \file
/// The values of one instance or material.
#pragma once

#include <OrvCore/OrvCoreExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QSharedDataPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Halvard::Orv {

/// \addtogroup records
/// @{

class InstanceDataRecord;
class Texture;

/// One record of named values and textures: the material of a group, the matrices of an instance.
///
/// A record names the plan (InstanceDataPlan) that lays it out, and does not need it: members are
/// kept by name, also those no plan declares, and also before the plan is registered. The layout is
/// looked up when a collection of records is packed (InstanceDataCollection::pack()).
///
/// A member holds one thing, what was set last: bytes, a texture's path, or a texture. Setting it
/// again does not change its place in members().
///
/// InstanceData is a value: implicitly shared, cheap to copy. Different copies may be used from
/// different threads, one record from one thread at a time.
class ORVCORE_EXPORT InstanceData
{
public:
    /// A record without a plan name (name() is null) and without members.
    InstanceData();

    /// A record without members for the plan `planName`, which need not be registered (yet).
    explicit InstanceData(const QString &planName);

    InstanceData(const InstanceData &other);     ///< Shares the members until one changes.
    InstanceData(InstanceData &&other) noexcept; ///< Shares them, too: `other` keeps its own.
    InstanceData &operator=(const InstanceData &other); ///< Shares the members.
    InstanceData &
    operator=(InstanceData &&other) noexcept; ///< Takes them over; `other` still answers.
    ~InstanceData();

    /// The name of the record's plan.
    QString name() const;

    /// Copies `size` bytes at `value` into `member`.
    /// \param member its name, as the plan and the shader spell it.
    /// \param value may be null only when `size` is 0, which leaves the member set and empty; else
    ///     the call does nothing but log a warning.
    /// \param size in bytes, at most INT_MAX; the call does nothing but log a warning beyond.
    void set(const QString &member, const void *value, unsigned long size);

    /// Keeps `path` as the texture of `member`. The file is not opened, nor need it exist.
    void setTexture(const QString &member, const QString &path);

    /// Keeps `texture` as the texture of `member`.
    /// \param member its name.
    /// \param texture not owned, and never looked into; null says that there is no texture.
    void setTexture(const QString &member, Texture *texture);

    /// Forgets all members. The plan's name stays.
    void clear();

    /// The bytes of `member`; empty for an unknown member and for one that holds a texture.
    QByteArray value(const QString &member) const;

    /// The texture path of `member`; null for an unknown member and for one that holds no path.
    QString texturePath(const QString &member) const;

    /// The texture of `member`; null for an unknown member and for one that holds none.
    Texture *texture(const QString &member) const;

    /// The names of all members set, in the order in which each was first set.
    QStringList members() const;

private:
    QSharedDataPointer<InstanceDataRecord> _record;
};

/// @}

} // namespace Halvard::Orv
