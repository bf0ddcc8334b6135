#include "FindingTable.h"

#include "FindingTexts.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace Halvard::Orv::Checking {

namespace {

Finding finished(const Tally &tally, const QString &file)
{
    Finding finding;
    finding.code = QString::fromLatin1(traitsOf(tally.code).name);
    finding.severity = tally.severity;
    finding.file = file;
    finding.line = tally.line;
    finding.count = tally.count;
    finding.subject = tally.subject;
    finding.fixable = tally.isFixable;
    finding.faces = tally.faces;
    finding.corners = tally.corners;
    const FindingTexts texts = textsOf(tally);
    finding.message = texts.message;
    finding.consequence = texts.consequence;
    finding.remedy = texts.remedy;
    return finding;
}

bool comesFirst(const Tally *a, const Tally *b)
{
    return std::tie(a->file, a->line, a->code, a->subject) <
           std::tie(b->file, b->line, b->code, b->subject);
}

} // namespace

bool Tally::add(qint64 atLine, qint64 occurrences)
{
    count += occurrences;
    if (line > 0 && line <= atLine)
        return false;
    line = atLine;
    return true;
}

int FindingTable::addFile(const QString &name)
{
    const int known = _files.indexOf(name, 1);
    if (known > 0)
        return known;
    _files.append(name);
    return _files.size() - 1;
}

Tally &FindingTable::at(Code code, const QString &subject, int file)
{
    const Key key{code, file, subject};
    if (Tally *known = _byKey.value(key))
        return *known;
    const int index = static_cast<int>(code);
    if (_subjects[index] < MostSubjects) {
        ++_subjects[index];
        Tally &tally = make(code, file);
        tally.subject = subject;
        _byKey.insert(key, &tally);
        return tally;
    }
    if (!_ofMany[index]) {
        _ofMany[index] = &make(code, file);
        _ofMany[index]->isOfMany = true;
        _ofMany[index]->subject = QStringLiteral("further ones"); // names have no blanks
    }
    return *_ofMany[index];
}

/// A new tally, without a subject.
Tally &FindingTable::make(Code code, int file)
{
    _tallies.emplace_back();
    Tally &tally = _tallies.back();
    tally.code = code;
    tally.file = file;
    tally.severity = traitsOf(code).severity;
    tally.isFixable = traitsOf(code).isFixable;
    return tally;
}

Tally *FindingTable::find(Code code, const QString &subject, int file)
{
    return _byKey.value({code, file, subject});
}

std::vector<Tally *> FindingTable::all(Code code)
{
    std::vector<Tally *> found;
    for (Tally &tally : _tallies) {
        if (tally.code == code && tally.count > 0)
            found.push_back(&tally);
    }
    return found;
}

void FindingTable::remove(Code code, const QString &subject, int file)
{
    if (Tally *tally = _byKey.take({code, file, subject}))
        tally->count = 0;
}

QVector<Finding> FindingTable::findings() const
{
    std::vector<const Tally *> sorted;
    for (const Tally &tally : _tallies) {
        if (tally.count > 0)
            sorted.push_back(&tally);
    }
    std::sort(sorted.begin(), sorted.end(), comesFirst);
    QVector<Finding> findings;
    for (const Tally *tally : sorted)
        findings.append(finished(*tally, _files.at(tally->file)));
    return findings;
}

} // namespace Halvard::Orv::Checking
