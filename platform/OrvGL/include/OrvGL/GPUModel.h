/// \file
/// A model on the GPU: bundles and their records.
#pragma once

#include <OrvGL/OrvGLExport.h>

#include <QtCore/QString>

#include <memory>
#include <vector>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

class DrawBuffers;
class InstanceDataCollection;

/// A model on the GPU: draw bundles, the records that belong to their commands, and names.
///
/// Bundles are numbered from 0 in the order of add(). Command `slot` of a bundle goes with record
/// `slot` of its collections and with the names given for that slot. Reading back something that is
/// out of range gives null, an empty string or 0.
class ORVGL_EXPORT GPUModel
{
public:
    GPUModel();
    ~GPUModel();
    GPUModel(const GPUModel &) = delete;
    GPUModel &operator=(const GPUModel &) = delete;

    /// Adds a bundle and takes over all three objects, each made with `new` and given only once.
    /// \param bundle null adds nothing and gives -1; the collections are deleted all the same. So
    ///     does, with a warning, a bundle one of whose buffers has failed to upload, and it is
    ///     deleted too: a model is drawn as a whole or not at all.
    /// \param instanceCount instances that one record describes; kept for reading back.
    /// \param materials, instances one record per command; null for none.
    /// \param key the batching key of the bundle.
    /// \return the index of the bundle.
    int add(DrawBuffers *bundle, int instanceCount, InstanceDataCollection *materials,
            InstanceDataCollection *instances, const unsigned long long &key);

    /// Names the material of command `slot` of `bundle`. Out of range (no such bundle, a negative
    /// slot) it does nothing but log a warning.
    void addMaterialName(int bundle, int slot, const QString &name);

    /// Names the object of command `slot` of `bundle`, like addMaterialName().
    void addObjectName(int bundle, int slot, const QString &name);

    int bundleCount() const;                            ///< How many bundles were added.
    DrawBuffers *bundle(int index) const;               ///< Owned by the model.
    int instanceCount(int index) const;                 ///< As given to add().
    unsigned long long key(int index) const;            ///< As given to add().
    InstanceDataCollection *materials(int index) const; ///< Owned by the model; null for none.
    InstanceDataCollection *instances(int index) const; ///< Owned by the model; null for none.
    QString materialName(int index, int slot) const;    ///< Null when none was given.
    QString objectName(int index, int slot) const;      ///< Null when none was given.

    /// Draws all commands of all bundles in the order of add(), each bundle with one
    /// glMultiDrawElementsIndirect. Binding the records and textures is the caller's; who needs
    /// that between the bundles calls DrawBuffers::draw() for each. See there for what is needed
    /// and for what is bound afterwards. \return false when a bundle could not be drawn; the others
    /// are drawn all the same.
    bool draw(unsigned int program);

private:
    struct Bundle;
    Bundle *at(int index) const;
    Bundle *toName(int bundle, int slot) const;

    std::vector<std::unique_ptr<Bundle>> _bundles;
};

/// @}

} // namespace Halvard::Orv
