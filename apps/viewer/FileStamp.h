/// \file
/// By what a file is known to have changed.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

namespace Halvard::Orv::Viewer {

/// A file at one moment; all zero for one that is not there.
struct FileStamp
{
    quint64 device = 0;
    quint64 number = 0; ///< of the file: another one may take its name
    qint64 size = 0;
    qint64 changed = 0; ///< nanoseconds since 1970

    bool exists() const { return number != 0; }
};

inline bool operator==(const FileStamp &a, const FileStamp &b)
{
    return a.device == b.device && a.number == b.number && a.size == b.size &&
           a.changed == b.changed;
}

inline bool operator!=(const FileStamp &a, const FileStamp &b)
{
    return !(a == b);
}

/// By path.
using FileStamps = QMap<QString, FileStamp>;

FileStamp stampOf(const QString &path);
FileStamps stampsOf(const QStringList &paths);

/// Whether a text ends in the middle: it is empty, or its last line has no end. So do files that are
/// still being written, and some that are whole. False for one that cannot be read.
bool endsInTheMiddle(const QString &path);

} // namespace Halvard::Orv::Viewer
