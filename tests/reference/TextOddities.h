/// \file
/// What happens to the lines of a text on their way into a file: blanks, line ends, encodings and
/// damage.
#pragma once

#include "support/RandomRings.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

namespace OrvReference {

using OrvTest::Dice;

/// Chances in a hundred.
struct Oddness
{
    int numbers = 0; ///< Of a number to be odd.
    int indices = 0; ///< Of a corner to be odd.
    int lines = 0;   ///< Of something odd between two lines.
    int blanks = 0;  ///< Of a line to have odd blanks.
    int ends = 0;    ///< Of a line to end oddly.
    int bytes = 0;   ///< Of the file to be damaged, or to be in another encoding.
};

/// Sound more often than not, and seldom odd in every way.
Oddness anyOddness(Dice &dice);

bool chance(Dice &dice, int percent);

/// The lines as the bytes of a file.
QByteArray fileContents(Dice &dice, const QStringList &lines, const Oddness &oddness);

} // namespace OrvReference
