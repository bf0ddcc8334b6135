#include "ConfinedCheck.h"

#include "Confinement.h"

#include <QtCore/QIODevice>

namespace Halvard::Orv::Cli {

CheckOptions confinedCheckOptions()
{
    CheckOptions options;
    if (!Confinement::isSet())
        return options;
    options.openLibrary = [](const QString &path) {
        QString refused; // to the check it is missing
        return Confinement::openInside(path, refused);
    };
    options.mayLookAt = Confinement::isInside;
    return options;
}

} // namespace Halvard::Orv::Cli
