/// \file
/// The lines of a material library: all of them, with what the loader's line reader makes of
/// each.
#pragma once

#include "Reading/LineTokens.h"
#include "Reading/TextLines.h"

#include <OrvModel/MTLReader.h>

#include <QtCore/QString>

namespace Halvard::Orv::Checking {

/// Steps through all lines of a material library. Each is read by an MTLReader of its own, so
/// that kind and values are the loader's; beside them this knows the number and the bytes of each
/// line, and passes over none.
class MTLLines
{
public:
    explicit MTLLines(QIODevice &device) : _text(device), _tokens(_text) {}
    MTLLines(QIODevice &device, const TextLines::Limits &limits)
        : _text(device, limits), _tokens(_text)
    {}

    /// Moves to the next line, whatever it is; false at the end.
    bool next();

    /// Whether the line holds more than blanks and a comment.
    bool hasContent() const { return _hasContent; }
    /// An MTLReader::LineType; LINE_UNKNOWN for lines without content, too.
    int type() const { return _type; }
    /// Whether the loader can read the line's values. False for an unknown keyword.
    bool isRead() const { return _isRead; }
    const TextLine &line() const { return _line; }
    /// The tokens of the whole line, comment included: "#" ends a line wherever it stands, also
    /// inside a token.
    const LineTokens &tokens() const { return _tokens; }
    const TextLines &text() const { return _text; }

    /// \name Values of the line, where isRead()
    /// @{
    const float *values() const { return _values; }
    /// A name, or a path as it is written.
    const QString &word() const { return _word; }
    /// @}

    /// The line without its comment and the blanks around it, and without the keyword: what a
    /// writer who allows blanks in names means by a name.
    QString rest() const;
    /// The line's keyword.
    QString keyword() const;

private:
    TextLines _text;
    LineTokens _tokens;
    TextLine _line;
    QString _content;
    bool _hasContent = false;
    bool _isRead = false;
    int _type = MTLReader::LINE_UNKNOWN;
    float _values[3] = {};
    QString _word;
};

} // namespace Halvard::Orv::Checking
