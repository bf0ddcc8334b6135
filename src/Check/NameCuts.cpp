#include "NameCuts.h"

namespace Halvard::Orv::Checking {

void NameCuts::addCut(const QString &word, const QString &full, qint64 line, int file)
{
    const QString simple = full.simplified();
    _fullNames[word].insert(simple);
    Tally &tally = _findings.at(Code::NameCutAtBlank, simple, file);
    if (tally.add(line))
        tally.detail = word;
}

void NameCuts::finish()
{
    for (Tally *tally : _findings.all(Code::NameCutAtBlank)) {
        // Libraries and textures have been told apart before: those names are no materials'.
        const auto names = _fullNames.constFind(tally->detail);
        const Material *material = _materials.find(tally->detail);
        if (names != _fullNames.constEnd() && names->size() == 1 &&
            names->contains(tally->subject) && !(material && material->isNamedWhole))
            tally->severity = FindingSeverity::Hint;
    }
}

} // namespace Halvard::Orv::Checking
