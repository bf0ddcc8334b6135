/// \file
/// What a finding says.
#pragma once

#include "FindingTable.h"

namespace Halvard::Orv::Checking {

struct FindingTexts
{
    QString message;
    QString consequence;
    QString remedy;
};

FindingTexts textsOf(const Tally &tally);

} // namespace Halvard::Orv::Checking
