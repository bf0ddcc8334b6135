#include "Libraries/InputFile.h"

#include "Files/FileOpening.h"

#include <QtCore/QFile>
#include <QtCore/QtDebug>

namespace Halvard::Orv {

namespace {

QString described(FileTrouble trouble, const QFile &file)
{
    switch (trouble) {
    case FileTrouble::None:
        break;
    case FileTrouble::Missing:
        return QStringLiteral("no such file");
    case FileTrouble::Directory:
        return QStringLiteral("is a directory");
    case FileTrouble::NotRegular:
        return QStringLiteral("not a regular file");
    case FileTrouble::Busy:
        return QStringLiteral("held by another program");
    case FileTrouble::Unreadable:
        return file.errorString().toLower(); // "permission denied", as the system says it
    }
    return {};
}

} // namespace

bool openInputFile(QFile &file, QString *reason)
{
    constexpr QIODevice::OpenMode Mode = QIODevice::ReadOnly | QIODevice::Text;
    const QString name = file.fileName();
    const FileTrouble trouble = openWithoutWaiting(file, Mode);
    if (trouble == FileTrouble::None)
        return true;
    if (reason)
        *reason = described(trouble, file);
    if (trouble == FileTrouble::NotRegular)
        qWarning("'%s' is not read: it is a pipe, a socket or a device; copy what it gives into "
                 "a regular file",
                 qUtf8Printable(name));
    else if (trouble == FileTrouble::Busy)
        qWarning("'%s' is not read: another program has not let go of it for a minute",
                 qUtf8Printable(name));
    return false;
}

} // namespace Halvard::Orv
