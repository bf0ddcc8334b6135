/// \file
/// How a scan of an OBJ file ends, and how large a file may be.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <cstddef>

namespace Halvard::Orv {

enum class OBJScanOutcome
{
    Finished,
    /// A material library cannot be opened.
    LibraryMissing,
    /// The file has more values, corners or faces than a stream holds, or a line
    /// that is too long to be decoded.
    LimitExceeded,
    /// The file has to be read with a QTextStream, from its begin and into another
    /// builder: it is in UTF-16, for example. A sequential device is then as it was.
    NeedsLineReader,
};

/// Sizes that tests make smaller.
struct OBJScanLimits
{
    /// Bytes read at a time on one thread.
    size_t chunkBytes = size_t(1) << 18;
    /// Bytes read at a time on each of several threads; what is found in them takes as much
    /// again, and should stay in the thread's cache.
    size_t pieceBytes = size_t(1) << 19;
    /// Smaller files are read on one thread: others would come too late.
    qint64 threadsFromBytes = qint64(1) << 21;
    /// A line longer by a chunk is too long. A QString holds 2^30 characters.
    size_t lineBytes = (size_t(1) << 30) - (size_t(1) << 20);
    /// Most floats, indices and faces. A stream holds 2^31 - 1 bytes with its header.
    size_t streamElements = (size_t(1) << 29) - 32;

    /// Most corners of all faces: before equal vertices are found, each corner takes
    /// the three floats of a position, and each triangle, of which there are fewer,
    /// three indices.
    size_t corners() const { return streamElements / 3; }
};

/// How much a file has so far.
struct OBJCounts
{
    quint64 positions = 0; ///< numbers, three a line
    quint64 normals = 0;   ///< numbers, three a line
    quint64 texCoords = 0; ///< numbers, two a line
    quint64 corners = 0;
    quint64 faces = 0;

    OBJCounts operator+(const OBJCounts &other) const
    {
        return {positions + other.positions, normals + other.normals, texCoords + other.texCoords,
                corners + other.corners, faces + other.faces};
    }

    /// What there is too much of, for a message; null when everything fits.
    QString excess(const OBJScanLimits &limits) const;
};

/// The fraction of a file that has been read.
/// \param fileBytes 0 for a stream.
double readFraction(qint64 bytes, qint64 fileBytes);

OBJCounts countsOf(const OBJGeometry &geometry);

/// What there is too much of where a line is too long.
QString tooLongLine(const OBJScanLimits &limits);

} // namespace Halvard::Orv
