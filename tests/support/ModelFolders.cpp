#include "support/ModelFolders.h"

#include <QtCore/QDirIterator>

namespace OrvTest {

QStringList modelsBelow(const QString &folder)
{
    QStringList files;
    QDirIterator found(folder, {QStringLiteral("*.obj")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (found.hasNext())
        files.append(found.next());
    files.sort();
    return files;
}

} // namespace OrvTest
