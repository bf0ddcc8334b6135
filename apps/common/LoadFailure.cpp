#include "LoadFailure.h"

#include <SimilarFiles.h>

#include <QtCore/QFileInfo>

namespace Halvard::Orv::Apps {

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

/// A file that may have been meant by the name of one that does not exist; null where there is none.
QString similarTo(const QString &path)
{
    const QString meant = fileMeantBy(path);
    return meant.isNull() ? fileOfOtherSuffix(path, QFileInfo(path).suffix()) : meant;
}

} // namespace

QString explainedFailure(const QString &message, const QString &reason)
{
    if (reason.isEmpty())
        return message;
    const QString file = fileOf(message);
    const QString similar =
        reason == QLatin1String("no such file") && !file.isNull() ? similarTo(file) : QString();
    if (similar.isNull())
        return QStringLiteral("%1: %2.").arg(message, reason);
    return QStringLiteral("%1: %2, but there is '%3'.").arg(message, reason, similar);
}

} // namespace Halvard::Orv::Apps
