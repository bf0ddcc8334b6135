#include "SimilarFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

namespace Halvard::Orv {

namespace {

/// The system finds nothing beyond, and each directory on the way is read.
constexpr int LongestPath = 4096;

bool isUsable(const QString &path)
{
    return path.size() <= LongestPath && !path.contains(QChar::Null);
}

/// The entries of a directory, sorted by name.
QStringList entriesOf(const QString &directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                     QDir::Name);
}

/// The entry of a directory with that name, whatever the case of its letters.
QString entryOf(const QString &directory, const QString &name)
{
    for (const QString &entry : entriesOf(directory)) {
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return entry;
    }
    return {};
}

} // namespace

bool isRegularFile(const QString &path)
{
    return isUsable(path) && QFileInfo(path).isFile();
}

QString fileOfOtherCase(const QString &path)
{
    if (!isUsable(path))
        return {};
    const QString absolute = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    QString found;
    for (const QString &part : absolute.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        const QString exact = found + QLatin1Char('/') + part;
        if (QFileInfo::exists(exact)) {
            found = exact;
            continue;
        }
        const QString entry = entryOf(found.isEmpty() ? QStringLiteral("/") : found, part);
        if (entry.isNull())
            return {};
        found += QLatin1Char('/') + entry;
    }
    return isRegularFile(found) ? found : QString();
}

QString fileOfOtherSuffix(const QString &path, const QString &preferred)
{
    if (!isUsable(path))
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

QString fileMeantBy(const QString &path)
{
    QString slashed = path;
    slashed.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return slashed != path && isRegularFile(slashed) ? slashed : fileOfOtherCase(slashed);
}

} // namespace Halvard::Orv
