#include "Libraries/MaterialLibraries.h"

#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include <QtCore/QFileInfo>

namespace Halvard::Orv {

bool MaterialLibraries::load(const QString &path)
{
    if (_loaded.count(path) > 0)
        return true;
    // Opening the file says what there is to say about a name with a zero byte.
    const QString canonical =
        path.contains(QChar::Null) ? QString() : QFileInfo(path).canonicalFilePath();
    if (!canonical.isEmpty() && _loaded.count(canonical) > 0)
        return true;
    if (!loadMaterialsFromMTLFile(path, _builder))
        return false;
    _loaded.insert(path);
    _loaded.insert(canonical);
    return true;
}

bool MaterialLibraries::hasMaterial(const QString &name) const
{
    return _builder.hasMaterialGroup(name);
}

} // namespace Halvard::Orv
