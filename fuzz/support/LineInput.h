/// \file
/// An input as the text of a line reader.
#pragma once

#include "support/Fuzzing.h"

#include <QtCore/QBuffer>
#include <QtCore/QTextStream>

namespace OrvFuzz {

/// Opened as a file is, or, by the lowest bit of its choice, as it stands.
struct LineInput
{
    LineInput(const std::uint8_t *data, std::size_t size)
        : text(asText(data, size)), choice(choiceOf(text))
    {
        buffer.setData(text);
        buffer.open(choice & 1 ? QIODevice::ReadOnly | QIODevice::Text : QIODevice::ReadOnly);
        stream.setDevice(&buffer);
    }

    const QByteArray text;
    const unsigned choice;
    QBuffer buffer;
    QTextStream stream;
};

} // namespace OrvFuzz
