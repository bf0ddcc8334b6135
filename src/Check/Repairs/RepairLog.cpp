#include "Repairs/RepairLog.h"

#include <algorithm>
#include <tuple>

namespace Halvard::Orv::Checking {

QString quoted(const QString &name)
{
    constexpr int MostNameCharacters = 200;
    const QString shown = name.size() > MostNameCharacters
                              ? name.left(MostNameCharacters) + QStringLiteral("...")
                              : name;
    return QLatin1Char('"') + shown + QLatin1Char('"');
}

int RepairLog::file(const QString &name)
{
    const int known = _files.indexOf(name);
    if (known >= 0)
        return known;
    _files.append(name);
    return _files.size() - 1;
}

void RepairLog::add(QLatin1String code, int file, qint64 line, const QString &subject,
                    const QString &message)
{
    auto key = qMakePair(QString(code), qMakePair(file, subject));
    auto known = _numbers.constFind(key);
    if (known == _numbers.constEnd()) {
        int &subjects = _subjects[qMakePair(key.first, file)];
        if (subjects < MostSubjects) {
            ++subjects;
        } else {
            key.second.second = QString();
            known = _numbers.constFind(key);
        }
    }
    if (known == _numbers.constEnd()) {
        _numbers.insert(key, _entries.size());
        _entries.append({{code, _files.at(file), line, 1, key.second.second, message}, file});
        return;
    }
    RepairChange &change = _entries[*known].change;
    ++change.count;
    if (line < change.line) {
        change.line = line;
        change.message = message;
    }
}

QVector<RepairChange> RepairLog::changes() const
{
    QVector<Entry> sorted = _entries;
    std::sort(sorted.begin(), sorted.end(), [](const Entry &a, const Entry &b) {
        return std::tie(a.file, a.change.line, a.change.code, a.change.subject) <
               std::tie(b.file, b.change.line, b.change.code, b.change.subject);
    });
    QVector<RepairChange> changes;
    for (const Entry &entry : sorted)
        changes.append(entry.change);
    return changes;
}

} // namespace Halvard::Orv::Checking
