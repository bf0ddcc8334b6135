#include "Confinement.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Halvard::Orv::Cli {

namespace {

struct State
{
    QString given;     // absolute, as it was given
    QString canonical; // without links
};

State &state()
{
    static State instance;
    return instance;
}

/// With a slash at the end, so that "/a/bc" does not lie in "/a/b".
QString withSlash(const QString &directory)
{
    return directory.endsWith(QLatin1Char('/')) ? directory : directory + QLatin1Char('/');
}

/// The path without links. Of one that does not exist, the part that does. Empty where that
/// cannot be said.
QString resolved(const QString &path)
{
    constexpr int LongestPath = 4096; // the system finds nothing beyond
    if (path.size() > LongestPath)
        return {};
    const QFileInfo info(path);
    const QString canonical = info.canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    const QString absolute = info.absoluteFilePath();
    const int slash = absolute.lastIndexOf(QLatin1Char('/'));
    const QString name = absolute.mid(slash + 1);
    // A link to nowhere may lead anywhere tomorrow.
    if (slash < 0 || info.isSymLink() || name == QLatin1String(".."))
        return {};
    if (slash == 0)
        return absolute;
    const QString directory = resolved(absolute.left(slash));
    return directory.isEmpty() ? directory : withSlash(directory) + name;
}

} // namespace

bool Confinement::setDirectory(const QString &directory)
{
    const QFileInfo info(directory);
    if (!info.isDir())
        return false;
    state().given = QDir::cleanPath(info.absoluteFilePath());
    state().canonical = info.canonicalFilePath();
    return true;
}

bool Confinement::isSet()
{
    return !state().canonical.isEmpty();
}

bool Confinement::isInside(const QString &path)
{
    if (!isSet())
        return true;
    return !path.contains(QChar::Null) && resolved(path).startsWith(withSlash(state().canonical));
}

QString Confinement::objection(const QString &path)
{
    // A name with a zero byte is none for the system, wherever it would lie.
    if (path.contains(QChar::Null))
        return {};
    return isInside(path) ? QString() : QStringLiteral("lies outside the directory of --within");
}

std::unique_ptr<QIODevice> Confinement::openInside(const QString &path, QString &refused)
{
    if (path.contains(QChar::Null))
        return nullptr;
    if (!isInside(path)) {
        refused = path;
        return nullptr;
    }
    // Not waiting for the other end of a pipe.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    auto file = std::make_unique<QFile>();
    struct stat status;
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        !file->open(descriptor, QIODevice::ReadOnly | QIODevice::Text,
                    QFileDevice::AutoCloseHandle)) {
        if (descriptor >= 0)
            ::close(descriptor);
        return nullptr;
    }
    if (isInside(QStringLiteral("/proc/self/fd/%1").arg(descriptor)))
        return file;
    refused = path;
    return nullptr;
}

QString Confinement::relative(const QString &path)
{
    if (!isSet())
        return path;
    const QString absolute = QDir::cleanPath(QDir::current().absoluteFilePath(path));
    for (const QString &directory : {state().given, state().canonical}) {
        if (absolute.startsWith(withSlash(directory)))
            return absolute.mid(withSlash(directory).size());
    }
    return path;
}

QString Confinement::withRelativePaths(const QString &message)
{
    if (!isSet())
        return message;
    QString text = message;
    for (const QString &directory : {state().given, state().canonical})
        text.remove(withSlash(directory));
    return text;
}

} // namespace Halvard::Orv::Cli
