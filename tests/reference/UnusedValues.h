/// \file
/// Shrinking an OBJ text without its faces coming to mean something else.
#pragma once

#include <QtCore/QByteArray>

namespace OrvReference {

/// The text without the value lines that no face refers to, the indices of the faces counting what
/// is left. Only plain lines and positive indices are understood, which is good enough for an
/// attempt: whoever asks for it has to see whether the result still shows what it should.
/// \param keyword "v", "vt" or "vn".
QByteArray withoutUnusedValues(const QByteArray &text, const QByteArray &keyword);

} // namespace OrvReference
