#include "Libraries/InputFile.h"

#include "Files/FileOpening.h"

#include <QtCore/QFile>
#include <QtCore/QtDebug>

namespace Halvard::Orv {

bool openInputFile(QFile &file)
{
    constexpr QIODevice::OpenMode Mode = QIODevice::ReadOnly | QIODevice::Text;
    const QString name = file.fileName();
    switch (openWithoutWaiting(file, Mode)) {
    case FileTrouble::None:
        return true;
    case FileTrouble::NotRegular:
        qWarning("'%s' is not read: it is a pipe, a socket or a device; copy what it gives into "
                 "a regular file",
                 qUtf8Printable(name));
        return false;
    case FileTrouble::Busy:
        qWarning("'%s' is not read: another program has not let go of it for a minute",
                 qUtf8Printable(name));
        return false;
    case FileTrouble::Missing:
    case FileTrouble::Directory:
    case FileTrouble::Unreadable:
        return false;
    }
    return false;
}

} // namespace Halvard::Orv
