/// \file
/// What a piece of a file holds, read without knowing what comes before it.
#pragma once

#include "Scanning/FaceGrouping.h"
#include "Scanning/OBJGeometry.h"
#include "Scanning/OBJScanLimits.h"
#include "Scanning/TextScanning.h"

#include <QtCore/QString>

#include <array>
#include <vector>

namespace Halvard::Orv {

/// A line on materials, and what comes before it.
struct MaterialEvent
{
    enum Kind
    {
        Select,
        Load
    };

    Kind kind;
    QString text; ///< name of the material, or path of the library
    FacePlace place;
    OBJCounts counts;
};

/// Which attributes have values before a piece: positions, normals, texture coordinates.
using AttributeFlags = std::array<bool, 3>;

/// Where a piece's arrays go.
struct PiecePlace
{
    struct Attribute
    {
        float *values;
        quint32 *indices;
        quint32 valuesBefore;
    };

    std::array<Attribute, 3> attributes;
    quint8 *small;
    quint32 *large;
};

/// Reads pieces, one after the other, into memory that it keeps.
class OBJPiece : private MaterialLines
{
public:
    OBJPiece(const QString &baseDir, const LineDecoder &decoder);

    /// \param existBefore the attributes that exist before the piece.
    TextEnd scan(const TextPiece &text, const AttributeFlags &existBefore);

    /// Whether scanning with these flags would have given something else.
    bool dependsOn(const AttributeFlags &existBefore) const;
    /// The attributes of which the piece has values.
    AttributeFlags existing() const;

    const OBJGeometry &geometry() const { return _geometry; }
    /// In the order of the text; places and counts are those in the piece.
    std::vector<MaterialEvent> &events() { return _events; }

    /// Makes room behind what `whole` holds, which may move its arrays.
    void makeRoom(OBJGeometry &whole) const;
    bool fits(const OBJGeometry &whole) const;
    /// Enlarges the arrays of `whole`, which fit, and tells what became of their ends.
    PiecePlace claim(OBJGeometry &whole) const;
    /// Copies everything to the place claimed for it.
    void copyTo(const PiecePlace &place) const;

private:
    void select(const QString &material) override;
    bool load(const QString &libraryPath) override;
    void note(MaterialEvent::Kind kind, const QString &text);

    OBJGeometry _geometry;
    std::array<std::vector<IndexRange>, 3> _relativeIndices;
    AttributeFlags _existBefore{};
    std::vector<MaterialEvent> _events;
    TextScanner _scanner;
};

} // namespace Halvard::Orv
