/// \file
/// Random OBJ files, as programs write them or slightly damaged.
#pragma once

#include "support/RandomRings.h"

#include <QtCore/QByteArray>

namespace OrvTest {

/// Runs of lines of one kind, with something else in between now and then; half of the files
/// are damaged.
QByteArray randomOBJText(Dice &dice);

} // namespace OrvTest
