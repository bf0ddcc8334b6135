/// \file
/// Values and faces as the loader assigns them to one another.
#pragma once

#include "FaceShapes.h"
#include "FindingTable.h"
#include "Materials.h"
#include "PagedPoints.h"
#include "Reading/OBJLines.h"

#include <deque>
#include <vector>

namespace Halvard::Orv::Checking {

/// Takes the values and faces of a model in the order of the file, and counts what becomes of the
/// faces.
///
/// A face is looked at as soon as all positions that it selects are read, which in nearly all
/// files is at once: nothing of it is kept. Two kinds of faces wait, in a few bytes each: those
/// that refer to values further down, and, in a file whose first "v" comes after faces, those
/// whose indices are not read yet. There the loader's stream of indices is too short: entry i
/// still belongs to corner i, so that the first corners take what later faces gave.
class FaceCheck
{
public:
    FaceCheck(FindingTable &findings, Materials &materials)
        : _findings(findings), _materials(materials)
    {}

    void addPosition(const float *xyz, qint64 line);
    void addNormal(const float *xyz, qint64 line);
    void addTexCoord(qint64 line);

    /// \param corners resolved, as the line reader has them.
    /// \param material that is selected.
    void addFace(qint64 line, const std::vector<Corner> &corners, int material);
    /// Counts a face that the loader drops.
    void addUnreadableFace()
    {
        ++_faces;
        ++_unreadableFaces;
    }

    /// Looks at the faces that wait, and says what is to be said of attributes. Call once, at the
    /// end.
    void finish();

    qint64 faces() const { return _faces; }
    qint64 unreadableFaces() const { return _unreadableFaces; }
    qint64 corners() const { return _corners; }
    /// Triangles of the faces under a defined material.
    qint64 triangles() const { return _triangles; }
    /// Whether there are corners, but an attribute has no indices: the loader then draws nothing.
    bool hasAttributeAfterFaces() const;
    qint64 positions() const { return static_cast<qint64>(_positions.count()); }
    qint64 normals() const { return _normals.values; }
    qint64 texCoords() const { return _texCoords.values; }

    /// Positions that no corner selects, and the first of them; valid after finish().
    qint64 unusedPositions() const { return _unusedPositions; }
    qint64 firstUnusedPosition() const { return _firstUnusedPosition; }

private:
    /// What is known of an attribute.
    struct Attribute
    {
        qint64 values = 0;
        qint64 firstLine = 0;     ///< Of its values.
        qint64 cornersBefore = 0; ///< Corners read before the first value.
        qint64 absent = 0;        ///< Corners that select none.
        qint64 firstAbsentLine = 0;
        qint64 selecting = 0; ///< Corners that select one.
        struct Unknown
        {
            quint32 line; ///< At most the largest number: there are never so many lines.
            int index;
        };
        std::vector<Unknown> unknown; ///< Indices beyond the values read so far.
        /// Of the indices read before the first value: their number and the largest one.
        qint64 early = 0;
        Unknown firstEarly{0, 0};
        Unknown largestEarly{0, -1};
    };

    struct Face
    {
        qint64 line;
        quint32 corners;
        quint32 material : 31;
        quint32 isGrouped : 1; ///< Its material was defined when it was read.
    };

    void begin(Attribute &attribute, qint64 line);
    void countIndex(Attribute &attribute, const char *name, int index, qint64 line);
    void finishIndices(const Attribute &attribute, const char *name);
    void finishPlace(const Attribute &attribute, const char *name);
    void finishNormals();
    void finishTexCoords();
    bool comesAfterFaces(const Attribute &attribute) const;
    void takeWaiting(bool isLast);
    void place(const Face &face, const int *positions);
    void examine(const Face &face, const int *positions);
    void tellShape(const Face &face);
    QVector<QVector3D> corners(const Face &face) const;
    void tell(Code code, const Face &face, bool isLost = false);
    void compareNormals(const Face &face, const std::vector<Corner> &corners);
    void countUnused();

    FindingTable &_findings;
    Materials &_materials;
    PagedPoints _positions;
    PagedDirections _directions; // of the normals
    std::vector<bool> _isUsed;   // by position
    Attribute _v;
    Attribute _normals;
    Attribute _texCoords;
    qint64 _faces = 0;
    qint64 _unreadableFaces = 0;
    qint64 _corners = 0;
    qint64 _triangles = 0;
    qint64 _unusedPositions = 0;
    qint64 _firstUnusedPosition = -1;

    FaceShapes _shapes;
    FaceShape _shape;          // of the face examined last
    bool _wasExamined = false; // the face added last
    std::vector<float> _ring;  // its positions
    std::vector<int> _indices; // of the face being added

    std::deque<Face> _waiting; // for indices
    std::deque<int> _waitingIndices;
    std::vector<Face> _deferred; // for positions
    std::vector<int> _deferredIndices;
};

} // namespace Halvard::Orv::Checking
