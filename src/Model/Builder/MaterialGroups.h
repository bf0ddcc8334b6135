/// \file
/// The material groups of a builder, by name and in the order of their definition.
#pragma once

#include <OrvModel/ModelBuilder.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <deque>
#include <map>

namespace Halvard::Orv {

/// Names come from files. They are looked up in an ordered index, since files can be made
/// whose names collide in a hash table; and groups are walked through in the order of
/// their definition, so that the same file gives the same model in every process.
class MaterialGroups
{
public:
    using Group = ModelBuilder::MaterialGroup;

    struct Entry
    {
        QString name;
        Group group;
    };

    int size() const { return static_cast<int>(_entries.size()); }
    bool isEmpty() const { return _entries.empty(); }
    bool contains(const QString &name) const { return find(name) != nullptr; }

    /// Null for an unknown name. A group stays where it is until it is removed.
    const Group *find(const QString &name) const
    {
        const auto number = _numbers.find(name);
        return number == _numbers.end() ? nullptr : &_entries[number->second].group;
    }
    Group *find(const QString &name)
    {
        return const_cast<Group *>(static_cast<const MaterialGroups *>(this)->find(name));
    }

    /// The group `name`; a default-constructed one when there is none.
    Group value(const QString &name) const
    {
        const Group *group = find(name);
        return group ? *group : Group();
    }

    /// The group `name`, made as the last one when there is none.
    Group &findOrAdd(const QString &name)
    {
        const auto [number, isNew] = _numbers.try_emplace(name, _entries.size());
        if (isNew) {
            try {
                _entries.push_back({name, {}});
            } catch (...) {
                _numbers.erase(number);
                throw;
            }
        }
        return _entries[number->second].group;
    }

    void removeLast()
    {
        _numbers.erase(_entries.back().name);
        _entries.pop_back();
    }

    void clear()
    {
        _numbers.clear();
        _entries.clear();
    }

    QStringList names() const
    {
        QStringList list;
        for (const Entry &entry : _entries)
            list.append(entry.name);
        return list;
    }

    auto begin() const { return _entries.cbegin(); }
    auto end() const { return _entries.cend(); }

private:
    std::deque<Entry> _entries;
    std::map<QString, std::size_t> _numbers; // of the entries
};

} // namespace Halvard::Orv
