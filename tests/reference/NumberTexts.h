/// \file
/// Numbers as files spell them, well and badly.
#pragma once

#include "support/RandomRings.h"

#include <QtCore/QString>

namespace OrvReference {

using OrvTest::Dice;

/// How a program that writes models prints its coordinates.
enum class NumberStyle
{
    Short,
    Fixed,
    Exact,
    Long,
    Scientific,
    Whole
};

NumberStyle anyNumberStyle(Dice &dice);

QString numberText(double value, NumberStyle style);

/// A number that few programs would write, or none at all.
QString oddNumber(Dice &dice);

/// An index, or a whole corner of a face, that selects nothing or does not even parse.
QString oddIndex(Dice &dice);

/// One of a list.
template <typename Item, std::size_t Size>
const Item &oneOf(Dice &dice, const Item (&items)[Size])
{
    return items[dice.below(static_cast<int>(Size))];
}

} // namespace OrvReference
