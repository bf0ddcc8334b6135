/// \file
/// How a scan of an OBJ file ends, and how large a file may be.
#pragma once

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
    /// builder: it is in UTF-16, for example, or no regular file.
    NeedsLineReader,
};

/// Sizes that tests make smaller.
struct OBJScanLimits
{
    /// Bytes read at a time.
    size_t chunkBytes = size_t(1) << 18;
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

    /// What there is too much of, for a message; null when everything fits.
    QString excess(const OBJScanLimits &limits) const;
};

} // namespace Halvard::Orv
