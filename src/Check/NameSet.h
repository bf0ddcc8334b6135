/// \file
/// A set of names from a file. Ordered: strangers choose the names, and of those that collide in a
/// hash table each is compared with all before it.
#pragma once

#include <QtCore/QString>

#include <set>

namespace Halvard::Orv::Checking {

class NameSet
{
public:
    bool contains(const QString &name) const { return _names.find(name) != _names.end(); }
    void insert(const QString &name) { _names.insert(name); }

private:
    std::set<QString> _names;
};

} // namespace Halvard::Orv::Checking
