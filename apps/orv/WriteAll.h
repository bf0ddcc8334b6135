/// \file
/// Writing that does not stop half-way.
#pragma once

class QByteArray;
class QIODevice;

namespace Halvard::Orv::Cli {

/// Writes all of `bytes`. A device that takes a part of them is asked again: to Qt a
/// part is no error, and only a call that gets nothing through learns the reason.
/// \return false when not everything was taken; `device` then knows why.
bool writeAll(QIODevice &device, const QByteArray &bytes);

} // namespace Halvard::Orv::Cli
