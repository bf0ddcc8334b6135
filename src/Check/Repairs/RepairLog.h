/// \file
/// What is changed, counted while it is done.
#pragma once

#include "FindingCodes.h"

#include <OrvCheck/ModelRepair.h>

#include <QtCore/QMap>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace Halvard::Orv::Checking {

/// A name in quotes, cut where it is long.
QString quoted(const QString &name);

/// The changes of one repair, by code, file and subject. A file may hold millions of names: beyond
/// MostSubjects of a code in a file, all further ones share a change.
class RepairLog
{
public:
    static constexpr int MostSubjects = 1000;

    /// \return the number of a file, which is that of its first mention.
    int file(const QString &name);

    void add(Code code, int file, qint64 line, const QString &subject, const QString &message)
    {
        add(QLatin1String(traitsOf(code).name), file, line, subject, message);
    }
    void add(QLatin1String code, int file, qint64 line, const QString &subject,
             const QString &message);

    /// All changes, sorted.
    QVector<RepairChange> changes() const;

private:
    struct Entry
    {
        RepairChange change;
        int file;
    };

    QStringList _files;
    QVector<Entry> _entries;
    // Ordered as NameSet is: subjects are names from a file.
    QMap<QPair<QString, QPair<int, QString>>, int> _numbers;
    QMap<QPair<QString, int>, int> _subjects; // how many, by code and file
};

} // namespace Halvard::Orv::Checking
