/// \file
/// Reading bytes of devices of all kinds.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <cstddef>

class QIODevice;

namespace Halvard::Orv {

class Work;

/// Reads up to `count` bytes. Waits for a sequential device, such as a socket, until it has
/// some or ends.
/// \param work asked meanwhile whether to go on; may be null.
/// \return 0 at the end; an error is taken for the end.
size_t readSome(QIODevice &device, char *bytes, size_t count, Work *work = nullptr);

/// The first `count` bytes, fewer at the end, without consuming them.
QByteArray firstBytes(QIODevice &device, int count, Work *work = nullptr);

/// The descriptor of a regular file whose bytes readAt() gives; -1 for other devices.
int descriptorOf(QIODevice &device);

/// Reads up to `count` bytes from `offset` on, wherever the device is; for any thread.
/// \param descriptor from descriptorOf().
/// \return fewer than `count` at the end only; an error is taken for the end.
size_t readAt(int descriptor, qint64 offset, char *bytes, size_t count);

} // namespace Halvard::Orv
