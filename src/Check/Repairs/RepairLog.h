/// \file
/// What is changed, counted while it is done.
#pragma once

#include "FindingCodes.h"

#include <OrvCheck/ModelRepair.h>

#include <QtCore/QHash>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace Halvard::Orv::Checking {

/// A name in quotes, cut where it is long.
QString quoted(const QString &name);

/// The changes of one repair, by code, file and subject.
class RepairLog
{
public:
    /// \return the number of a file, which is that of its first mention.
    int file(const QString &name);

    void add(Code code, int file, qint64 line, const QString &subject, const QString &message)
    {
        add(QLatin1String(traitsOf(code).name), file, line, subject, message);
    }
    void add(QLatin1String code, int file, qint64 line, const QString &subject,
             const QString &message);

    /// Number of occurrences so far.
    qint64 count() const { return _count; }
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
    QHash<QPair<QString, QPair<int, QString>>, int> _numbers;
    qint64 _count = 0;
};

} // namespace Halvard::Orv::Checking
