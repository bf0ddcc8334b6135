/// \file
/// Reads Wavefront OBJ text one meaningful line at a time.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QTextStream>
#include <QtCore/QVector>

namespace Halvard::Orv {

/// \addtogroup read
/// @{

/// Steps through OBJ text, tells what kind of line is at hand, and parses it on
/// request. Knows nothing of the model being built.
///
///     OBJReader reader(stream);            // the first line is classified
///     reader.setBaseDir("/models");
///     while (reader.valid()) {
///         if (reader.parseLine()) { ... reader.getLineType() ... }
///         reader.next();
///     }
///
/// Six keywords are recognised: v, vn, vt, f, mtllib and usemtl. Every other
/// line is passed over without a trace. Nothing is ever reported but through the
/// results of parseLine().
class ORVMODEL_EXPORT OBJReader
{
public:
    /// What a line is. The numbers are part of the interface.
    enum LineType
    {
        LINE_V = 0,      ///< "v": a position
        LINE_VN = 1,     ///< "vn": a normal
        LINE_VT = 2,     ///< "vt": a texture coordinate
        LINE_F = 3,      ///< "f": a face
        LINE_MTLLIB = 4, ///< "mtllib": a material library
        LINE_USEMTL = 5, ///< "usemtl": a material for the faces that follow
        LINE_EOF = 6,    ///< the stream is exhausted
        LINE_SKIP = 7    ///< no line classified yet
    };

    /// The index of a corner's texture coordinate or normal that the file leaves
    /// out: the largest signed 32-bit value.
    static constexpr int AbsentIndex = 0x7fffffff;

    /// One face corner: zero-based indices, or AbsentIndex. They may lie outside
    /// what the file holds, on either side.
    struct Vertex
    {
        int v;  ///< into the positions
        int vn; ///< into the normals
        int vt; ///< into the texture coordinates
    };

    /// Starts reading and classifies the first meaningful line.
    /// \param stream not owned; must outlive the reader.
    explicit OBJReader(QTextStream &stream);

    /// Sets the directory against which relative "mtllib" paths are resolved:
    /// the current directory until then.
    void setBaseDir(const QString &path);

    /// Whether a line is at hand, that is, the end is not reached. Says nothing
    /// about the outcome of parseLine().
    bool valid() const;

    /// Moves to the next line with a recognised keyword.
    void next();

    /// Parses the line at hand.
    /// \return false for a face with a token that is no index, for a stream in a
    ///         bad state, and where there is no line; malformed or missing
    ///         numbers of other lines read as 0, missing names as empty.
    bool parseLine();

    /// Parses the line at hand as a face. After a false result the corners are
    /// incomplete.
    bool parseVerts();

    /// The LineType of the line at hand.
    int getLineType() const;

    /// \name Numbers of the last parsed "v", "vn" or "vt" line
    /// All three return the same three floats; a "vt" line sets the first two.
    /// @{
    using Floats = float[3];     ///< As written, rounded to floats.
    const Floats &getV() const;  ///< x, y, z of a "v" line.
    const Floats &getVn() const; ///< x, y, z of a "vn" line.
    const Floats &getVt() const; ///< u, v of a "vt" line; the third is not the line's.
    /// @}

    /// Number of corners of the last parsed face.
    int getNumVertices() const;

    /// Corner `i` of the last parsed face.
    /// \pre 0 <= `i` < getNumVertices()
    Vertex getVertex(int i) const;

    /// \name Text of the last parsed "usemtl" or "mtllib" line
    /// One field serves both. A library path is resolved against the base
    /// directory; a name ends at the first blank.
    /// @{
    const QString &getUsemtlName() const; ///< Of a "usemtl" line.
    const QString &getMtllibPath() const; ///< Of a "mtllib" line.
    /// @}

    /// Zero-based index for an index as it stands in a file.
    /// \param index 1 is the first value, -1 the last of the `count` read so far,
    ///        0 stands for a component that is left out.
    /// \param count number of values read so far.
    /// \return AbsentIndex for 0; otherwise a number that is not checked against
    ///         `count` and may be negative.
    int resolveIndex(int index, int count) const;

private:
    struct Token
    {
        int begin; ///< in the line
        int length;
    };

    void tokenize();
    void classify(const QStringRef &keyword);
    QStringRef token(int i) const;
    float number(int i) const;
    bool parseCorner(const QStringRef &text, Vertex &corner) const;

    QDir _baseDir;
    QTextStream *_stream;
    QString _line;
    QVector<Token> _tokens; ///< of the line; a string for each would take ten times as much
    bool _parsedOk;
    int _lineType;
    Floats _xyz;
    QString _name;
    QVector<Vertex> _vertices;
    int _numV;
    int _numVt;
    int _numVn;
};

/// @}

} // namespace Halvard::Orv

Q_DECLARE_TYPEINFO(Halvard::Orv::OBJReader::Vertex, Q_PRIMITIVE_TYPE);
