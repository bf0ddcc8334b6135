#include "LoadFailure.h"

#include <render/SimilarFiles.h>

#include <QtCore/QFileInfo>

namespace Halvard::Orv::Cli {

namespace {

/// The file that a message of the loader is about; null for other messages.
QString fileOf(const QString &message)
{
    for (const QLatin1String &start :
         {QLatin1String("Failed to load OBJ file '"), QLatin1String("Failed to load MTL file '")}) {
        if (message.startsWith(start) && message.endsWith(QLatin1Char('\'')))
            return message.mid(start.size(), message.size() - start.size() - 1);
    }
    return {};
}

/// Empty where the file shows no reason: a warning then tells what the loader found.
QString reasonOf(const QString &path)
{
    const QFileInfo info(path);
    if (!path.contains(QChar::Null) && info.isDir())
        return QStringLiteral("it is a directory");
    if (!path.contains(QChar::Null) && info.exists())
        return info.isReadable() ? QString() : QStringLiteral("permission denied");
    QString similar = Render::fileMeantBy(path);
    if (similar.isNull())
        similar = Render::fileOfOtherSuffix(path);
    if (similar.isNull())
        return QStringLiteral("there is no such file");
    return QStringLiteral("there is no such file, but there is '%1'").arg(similar);
}

} // namespace

QString explainedFailure(const QString &message)
{
    const QString file = fileOf(message);
    const QString reason = file.isNull() ? QString() : reasonOf(file);
    return reason.isEmpty() ? message : QStringLiteral("%1: %2.").arg(message, reason);
}

} // namespace Halvard::Orv::Cli
