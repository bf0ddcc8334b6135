/// \file
/// Images that are built to be expensive.
#pragma once

#include <QtCore/QIODevice>

namespace Halvard::Orv {

/// Looks for what makes decoding an image take far more time or memory than the size that
/// it claims: images within icons that are larger than the icon, JPEGs of very many scans,
/// PNGs of very much compressed text, or of data that they do not have. Each reader of these formats has a limit of its own for
/// everything else.
///
/// Look before any reader does: some read half the file before they say how large it is.
///
/// \param device open, seekable, and at its start; left there.
/// \return what it has, to end the sentence "The texture 'x' "; null where there is nothing.
///         A format that is not known, and a file that is broken, is none of its business.
const char *excessOf(QIODevice &device);

} // namespace Halvard::Orv
