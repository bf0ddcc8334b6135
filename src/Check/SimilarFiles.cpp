#include "SimilarFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

namespace Halvard::Orv::Checking {

namespace {

/// The entries of a directory, sorted by name.
QStringList entriesOf(const QString &directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                     QDir::Name);
}

} // namespace

bool isRegularFile(const QString &path)
{
    return !path.contains(QChar::Null) && QFileInfo(path).isFile();
}

QString fileOfOtherCase(const QString &path)
{
    if (path.contains(QChar::Null) || !QDir::isAbsolutePath(path))
        return {};
    QString found;
    const QStringList parts = QDir::cleanPath(path).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const QString exact = found + QLatin1Char('/') + part;
        if (QFileInfo::exists(exact)) {
            found = exact;
            continue;
        }
        QString similar;
        for (const QString &entry : entriesOf(found.isEmpty() ? QStringLiteral("/") : found)) {
            if (similar.isNull() && entry.compare(part, Qt::CaseInsensitive) == 0)
                similar = entry;
        }
        if (similar.isNull())
            return {};
        found += QLatin1Char('/') + similar;
    }
    return isRegularFile(found) ? found : QString();
}

QString fileOfOtherSuffix(const QString &path, const QString &preferred)
{
    if (path.contains(QChar::Null))
        return {};
    const QFileInfo wanted(path);
    QString found;
    for (const QString &entry : entriesOf(wanted.path())) {
        const QFileInfo info(wanted.path() + QLatin1Char('/') + entry);
        if (info.completeBaseName().compare(wanted.completeBaseName(), Qt::CaseInsensitive) != 0 ||
            info.fileName() == wanted.fileName() || !info.isFile())
            continue;
        if (info.suffix().compare(preferred, Qt::CaseInsensitive) == 0)
            return info.filePath();
        if (found.isNull())
            found = info.filePath();
    }
    return found;
}

} // namespace Halvard::Orv::Checking
