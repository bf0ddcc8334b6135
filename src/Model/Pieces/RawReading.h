/// \file
/// A device read as it is.
#pragma once

#include <QtCore/QIODevice>

namespace Halvard::Orv {

/// Turns the text mode of a device off while it lives.
class RawReading
{
public:
    explicit RawReading(QIODevice &device) : _device(device), _textMode(device.isTextModeEnabled())
    {
        _device.setTextModeEnabled(false);
    }
    ~RawReading() { _device.setTextModeEnabled(_textMode); }
    RawReading(const RawReading &) = delete;
    RawReading &operator=(const RawReading &) = delete;

private:
    QIODevice &_device;
    const bool _textMode;
};

} // namespace Halvard::Orv
