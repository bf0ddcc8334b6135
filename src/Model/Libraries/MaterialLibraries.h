/// \file
/// The material libraries of one model.
#pragma once

#include <QtCore/QString>

#include <functional>
#include <memory>
#include <set>

class QIODevice;

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
    /// Opens a library for reading; null where there is none.
    using Opener = std::function<std::unique_ptr<QIODevice>(const QString &path)>;

    /// \param opener null: libraries are files.
    explicit MaterialLibraries(ModelBuilder &builder, Opener opener = {});

    /// As loadMaterialsFromMTLFile() into the builder.
    bool load(const QString &path);

    /// Why the last library could not be loaded.
    const QString &reason() const { return _reason; }

    /// Whether a material of that name can be used now.
    bool hasMaterial(const QString &name) const;

private:
    bool loadFile(const QString &path);
    bool loadOpened(const QString &path);

    ModelBuilder &_builder;
    Opener _opener;
    QString _reason;
    /// Paths as given, and canonical ones: a file has many names. Ordered: paths can be made
    /// up that collide in a hash table.
    std::set<QString> _loaded;
};

} // namespace Halvard::Orv
