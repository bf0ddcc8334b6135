#include "NameCuts.h"

namespace Halvard::Orv::Checking {

void NameCuts::addCut(const QString &word, const QString &full, qint64 line, int file)
{
    const QString simple = full.simplified();
    Tally &tally = _findings.at(Code::NameCutAtBlank, simple, file);
    tally.isFixable = true;
    if (tally.add(line))
        tally.detail = word;
    const auto known = _cuts.find(word);
    if (known != _cuts.end())
        known->isOnlyOne = known->isOnlyOne && known->fullName == simple;
    else if (!tally.isOfMany)
        _cuts.insert(word, {simple, true});
}

void NameCuts::finish()
{
    for (Tally *tally : _findings.all(Code::NameCutAtBlank)) {
        // Names of libraries and textures are not among the cuts.
        const auto cut = _cuts.constFind(tally->detail);
        const Material *material = _materials.find(tally->detail);
        if (cut != _cuts.constEnd() && cut->isOnlyOne && cut->fullName == tally->subject &&
            !(material && material->isNamedWhole))
            tally->severity = FindingSeverity::Hint;
    }
}

} // namespace Halvard::Orv::Checking
