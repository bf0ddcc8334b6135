#include <OrvGL/GPUModel.h>

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/VertexArrayObject.h>

#include <QtCore/QHash>
#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv {

struct GPUModel::Bundle
{
    std::unique_ptr<DrawBuffers> buffers;
    std::unique_ptr<InstanceDataCollection> materials;
    std::unique_ptr<InstanceDataCollection> instances;
    int instanceCount;
    unsigned long long key;
    // By slot. A hash: slots are the caller's numbers and may have gaps.
    QHash<int, QString> materialNames;
    QHash<int, QString> objectNames;
};

namespace {

// Whether something that the bundle draws with did not get to the GPU.
bool lacksData(const DrawBuffers &bundle)
{
    if (bundle.indexBuffer() && bundle.indexBuffer()->uploadFailed())
        return true;
    if (!bundle.VAO())
        return false;
    const auto &attributes = bundle.VAO()->attributes();
    return std::any_of(attributes.cbegin(), attributes.cend(),
                       [](const VertexArrayObject::Attribute &attribute) {
                           return attribute.buffer && attribute.buffer->uploadFailed();
                       });
}

} // namespace

GPUModel::GPUModel() = default;
GPUModel::~GPUModel() = default;

int GPUModel::add(DrawBuffers *bundle, int instanceCount, InstanceDataCollection *materials,
                  InstanceDataCollection *instances, const unsigned long long &key)
{
    // Owned before anything can throw.
    std::unique_ptr<DrawBuffers> ownedBundle(bundle);
    std::unique_ptr<InstanceDataCollection> ownedMaterials(materials);
    std::unique_ptr<InstanceDataCollection> ownedInstances(instances);
    if (!bundle) {
        qWarning("GPUModel::add: there is no bundle");
        return -1;
    }
    bundle->setParent(nullptr); // a parent would delete it a second time
    if (lacksData(*bundle)) {
        qWarning("GPUModel::add: the bundle is not added, since a buffer of it could not be "
                 "uploaded");
        return -1;
    }
    auto added = std::make_unique<Bundle>();
    added->buffers = std::move(ownedBundle);
    added->materials = std::move(ownedMaterials);
    added->instances = std::move(ownedInstances);
    added->instanceCount = instanceCount;
    added->key = key;
    _bundles.push_back(std::move(added));
    return bundleCount() - 1;
}

GPUModel::Bundle *GPUModel::at(int index) const
{
    return index >= 0 && index < bundleCount() ? _bundles[static_cast<size_t>(index)].get()
                                               : nullptr;
}

void GPUModel::addMaterialName(int bundle, int slot, const QString &name)
{
    if (Bundle *named = toName(bundle, slot))
        named->materialNames.insert(slot, name);
}

void GPUModel::addObjectName(int bundle, int slot, const QString &name)
{
    if (Bundle *named = toName(bundle, slot))
        named->objectNames.insert(slot, name);
}

GPUModel::Bundle *GPUModel::toName(int bundle, int slot) const
{
    Bundle *named = slot >= 0 ? at(bundle) : nullptr;
    if (!named)
        qWarning("GPUModel: there is no slot %d in bundle %d to name", slot, bundle);
    return named;
}

int GPUModel::bundleCount() const
{
    return static_cast<int>(_bundles.size());
}

DrawBuffers *GPUModel::bundle(int index) const
{
    const Bundle *found = at(index);
    return found ? found->buffers.get() : nullptr;
}

int GPUModel::instanceCount(int index) const
{
    const Bundle *found = at(index);
    return found ? found->instanceCount : 0;
}

unsigned long long GPUModel::key(int index) const
{
    const Bundle *found = at(index);
    return found ? found->key : 0;
}

InstanceDataCollection *GPUModel::materials(int index) const
{
    const Bundle *found = at(index);
    return found ? found->materials.get() : nullptr;
}

InstanceDataCollection *GPUModel::instances(int index) const
{
    const Bundle *found = at(index);
    return found ? found->instances.get() : nullptr;
}

QString GPUModel::materialName(int index, int slot) const
{
    const Bundle *found = at(index);
    return found ? found->materialNames.value(slot) : QString();
}

QString GPUModel::objectName(int index, int slot) const
{
    const Bundle *found = at(index);
    return found ? found->objectNames.value(slot) : QString();
}

bool GPUModel::draw(unsigned int program)
{
    bool all = true;
    for (const std::unique_ptr<Bundle> &bundle : _bundles)
        all = bundle->buffers->draw(program, 0, bundle->buffers->commands().size()) && all;
    return all;
}

} // namespace Halvard::Orv
