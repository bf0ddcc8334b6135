/// \file
/// Reading a file in pieces of whole lines, in any order.
#pragma once

#include "Pieces/TextPiece.h"

#include <QtCore/QtGlobal>

#include <cstddef>

namespace Halvard::Orv {

/// Cuts a file every so many bytes. A line belongs to the piece in which it begins, so that
/// pieces are read without knowing of each other; one in which no line begins has no bytes.
///
/// For any number of threads.
class FilePieces
{
public:
    /// What a piece is, beside its lines.
    enum class Kind
    {
        Inner,       ///< more pieces follow
        Last,        ///< the file ends in this piece
        LineTooLong, ///< behind its lines begins one that is too long
        None,        ///< the file ends before this piece
    };

    /// \param descriptor as of readAt().
    /// \param pieceBytes at least 2.
    /// \param maxLineBytes a line that is longer by a piece is too long.
    FilePieces(int descriptor, size_t pieceBytes, size_t maxLineBytes)
        : _descriptor(descriptor), _pieceBytes(pieceBytes), _maxLineBytes(maxLineBytes)
    {}

    Kind read(size_t number, TextPiece &piece) const;

private:
    bool append(TextPiece &piece, qint64 start, size_t count) const;
    Kind completeLastLine(TextPiece &piece, qint64 start, size_t begin) const;

    const int _descriptor;
    const size_t _pieceBytes;
    const size_t _maxLineBytes;
};

} // namespace Halvard::Orv
