/// \file
/// Random models, small for the most part, sound or slightly broken.
#pragma once

#include "reference/ModelFiles.h"
#include "reference/TextOddities.h"

namespace OrvReference {

/// The same files for the same seed, whatever the compiler.
ModelFiles generateModel(quint32 seed);

/// The lines of a material library.
QStringList materialLines(Dice &dice, const Oddness &oddness);

/// A name that a library may define and a model may use.
QString materialName(Dice &dice);

} // namespace OrvReference
