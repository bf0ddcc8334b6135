/// \file
/// The material libraries of one model.
#pragma once

#include <QtCore/QString>

#include <set>

namespace Halvard::Orv {

class ModelBuilder;

/// Loads the libraries that "mtllib" lines name, each file once.
///
/// Loading a library again adds nothing, since the first definition of a material
/// counts, but takes its time: a file of many such lines would take as long as their
/// number times the size of the library.
class MaterialLibraries
{
public:
    explicit MaterialLibraries(ModelBuilder &builder) : _builder(builder) {}

    /// As loadMaterialsFromMTLFile() into the builder.
    bool load(const QString &path);

    /// Whether a material of that name can be used now.
    bool hasMaterial(const QString &name) const;

private:
    ModelBuilder &_builder;
    /// Paths as given, and canonical ones: a file has many names. Ordered: paths can be made
    /// up that collide in a hash table.
    std::set<QString> _loaded;
};

} // namespace Halvard::Orv
