/// \file
/// Triangles of all faces of a model, run by run.
#pragma once

#include "Memory/GrowArray.h"
#include "Scanning/OBJGeometry.h"
#include "Triangles/FaceTriangulation.h"
#include "Triangles/VertexNormalSums.h"
#include "Triangles/Winding.h"

#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {

/// Cuts runs of faces into triangles, as FaceTriangulation does one by one, and
/// with its messages; hands the triangles on to the vertex normals.
class FaceTriangles
{
public:
    /// \param corners GPU vertex number of each corner of the file.
    /// \param positions three floats a vertex. One float past the last vertex may
    ///        be read.
    /// \param out where the triangles go, three vertex numbers each. May be
    ///        `corners` itself when no face has more than three corners and runs
    ///        are added in the order of the file: what is written then never gets
    ///        ahead of what is read.
    /// \param normals receives the triangles in the order in which they are written;
    ///        null when nobody needs normals. Normals are mostly divisions and
    ///        windings have none, so the machine does both in the time of one, if
    ///        it gets them a few triangles at a time.
    FaceTriangles(const CornerCounts &counts, const quint32 *corners, const float *positions,
                  quint32 *out, VertexNormalSums *normals);

    void addRun(const FaceRun &run);

    /// Keeps the messages of faces that cannot be triangulated until warn(): messages belong to
    /// the thread that loads, and in the order of the faces.
    void keepMessages()
    {
        _keepsMessages = true;
        _triangulation.setQuiet(true);
    }
    void warn() const;

    /// From now on nobody needs normals.
    void leaveNormals() { _normals = nullptr; }

    /// \name Faces of the runs so far that gave no triangle
    /// @{
    const UndrawnFaces &withTooFewCorners() const { return _withTooFewCorners; }
    const UndrawnFaces &notTriangulated() const { return _notTriangulated; }
    /// @}

    /// Entries written so far.
    size_t size() const { return static_cast<size_t>(_end - _begin); }

private:
    void addFourTriangles(const quint32 *corners);
    void addFourQuads(const quint32 *corners);
    void addSmallFaces(const quint8 *counts, unsigned faceCount, const quint32 *corners);
    void addSmallFaces(const quint8 *counts, unsigned faceCount, const quint32 *corners,
                       Windings windings);
    void addSmallFace(unsigned count, const quint32 *corners, bool clockwise);
    void addFace(quint32 count, const quint32 *corners);
    void addNormals(const quint32 *firstNew);
    void noteFailure(quint32 count, quint32 face);

    const CornerCounts &_counts;
    const quint32 *_corners;
    const float *_positions;
    quint32 *_begin;
    quint32 *_end;
    VertexNormalSums *_normals;
    FaceTriangulation _triangulation;
    UndrawnFaces _withTooFewCorners;
    UndrawnFaces _notTriangulated;
    bool _keepsMessages = false;
    std::vector<bool> _failures; ///< whether it was for too few corners, where messages are kept
};

} // namespace Halvard::Orv
