#include "Libraries/MaterialLibraries.h"

#include "Libraries/MTLLoading.h"

#include <OrvModel/ModelBuilder.h>

#include <QtCore/QFileInfo>
#include <QtCore/QIODevice>

#include <utility>

namespace Halvard::Orv {

MaterialLibraries::MaterialLibraries(ModelBuilder &builder, Opener opener)
    : _builder(builder), _opener(std::move(opener))
{}

bool MaterialLibraries::load(const QString &path)
{
    if (_loaded.count(path) > 0)
        return true;
    return _opener ? loadOpened(path) : loadFile(path);
}

bool MaterialLibraries::loadFile(const QString &path)
{
    // Opening the file says what there is to say about a name with a zero byte.
    const QString canonical =
        path.contains(QChar::Null) ? QString() : QFileInfo(path).canonicalFilePath();
    if (!canonical.isEmpty() && _loaded.count(canonical) > 0)
        return true;
    if (!loadMaterialsOfFile(path, _builder, &_reason))
        return false;
    _loaded.insert(path);
    _loaded.insert(canonical);
    return true;
}

bool MaterialLibraries::loadOpened(const QString &path)
{
    const std::unique_ptr<QIODevice> device = _opener(path);
    if (!device || (!device->isOpen() && !device->open(QIODevice::ReadOnly)) ||
        !device->isReadable()) {
        _reason = device ? QStringLiteral("not open for reading") : QStringLiteral("no such file");
        return false;
    }
    device->setTextModeEnabled(true);
    loadMaterials(*device, path, _builder);
    _loaded.insert(path);
    return true;
}

bool MaterialLibraries::hasMaterial(const QString &name) const
{
    return _builder.hasMaterialGroup(name);
}

} // namespace Halvard::Orv
