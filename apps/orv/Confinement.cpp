#include "Confinement.h"

#include "ModelFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

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
    return isInside(path) ? QString() : QStringLiteral("lies outside the directory of --within");
}

QString Confinement::refusal(const QString &model)
{
    if (!isSet())
        return {};
    if (!isInside(model))
        return QStringLiteral("'%1' %2.").arg(model, objection(model));
    for (const QString &library : librariesOf(model)) {
        if (!isInside(library))
            return QStringLiteral("'%1' is not loaded: its library '%2' %3.")
                .arg(model, library, objection(library));
    }
    return {};
}

QString Confinement::relative(const QString &path)
{
    if (!isSet())
        return path;
    const QString absolute = QFileInfo(path).absoluteFilePath();
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
