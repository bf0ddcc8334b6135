/// \file
/// The material libraries of one model.
#pragma once

#include <QtCore/QSet>
#include <QtCore/QString>

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

private:
    ModelBuilder &_builder;
    QSet<QString> _loaded; // paths as given, and canonical: one file has many names
};

} // namespace Halvard::Orv
