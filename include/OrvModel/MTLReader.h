/// \file
/// Reads Wavefront MTL text one meaningful line at a time.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QTextStream>

namespace Halvard::Orv {

/// \addtogroup read
/// @{

/// Steps through a material library, tells what kind of line is at hand, and
/// parses it on request. Knows nothing of materials.
///
///     MTLReader reader(stream, true);
///     while (reader.valid()) {
///         if (reader.parseLine()) { ... reader.getLineType() ... }
///         reader.next();
///     }
///
/// Unlike the OBJReader it does not read ahead when it is made: the first pass
/// through such a loop only calls next(). "#" ends every line, also inside a
/// name, and a number that cannot be read makes the whole line invalid.
class ORVMODEL_EXPORT MTLReader
{
public:
    /// What a line is. The numbers are part of the interface.
    enum LineType
    {
        LINE_NEWMTL = 0,  ///< "newmtl": a material's name
        LINE_KA = 1,      ///< "Ka": ambient colour
        LINE_KD = 2,      ///< "Kd": diffuse colour
        LINE_KS = 3,      ///< "Ks": specular colour
        LINE_NS = 4,      ///< "Ns": specular exponent
        LINE_D = 5,       ///< "d": opacity
        LINE_MAP_KD = 6,  ///< "map_Kd": texture path
        LINE_MAP_KS = 7,  ///< "map_Ks": texture path
        LINE_MAP_KA = 8,  ///< "map_Ka": texture path
        LINE_MAP_NS = 9,  ///< "map_Ns": texture path
        LINE_EOF = 10,    ///< the stream is exhausted
        LINE_UNKNOWN = 11 ///< any other keyword, and before the first next()
    };

    /// \param stream not owned; must outlive the reader. Nothing is read yet.
    /// \param skipUnknown whether next() passes over unknown keywords.
    MTLReader(QTextStream &stream, bool skipUnknown);
    MTLReader(const MTLReader &) = delete;
    MTLReader &operator=(const MTLReader &) = delete;

    /// Sets the directory against which relative texture paths are resolved: the
    /// current directory until then.
    void setBaseDir(const QString &path);

    /// Whether the end is not reached.
    bool valid() const;

    /// Moves to the next line with content, or with a recognised keyword when
    /// unknown ones are skipped.
    void next();

    /// Parses the line at hand.
    /// \return false where a value is missing or malformed, and where there is
    ///         nothing to parse. Numbers may be followed by anything: "10abc"
    ///         reads 10.
    bool parseLine();

    /// The LineType of the line at hand.
    int getLineType() const;

    /// \name Colour of the last parsed "Ka", "Kd" or "Ks" line
    /// All three return the same three floats.
    /// @{
    using Floats = float[3];     ///< Red, green and blue, as written: not limited to [0, 1].
    const Floats &getKa() const; ///< Of a "Ka" line.
    const Floats &getKd() const; ///< Of a "Kd" line.
    const Floats &getKs() const; ///< Of a "Ks" line.
    /// @}

    /// \name Number of the last parsed "Ns" or "d" line
    /// Both return the first of the three floats.
    /// @{
    float getNs() const; ///< Of an "Ns" line.
    float getD() const;  ///< Of a "d" line.
    /// @}

    /// \name Text of the last parsed "newmtl" or map line
    /// One field serves all. Texture paths are resolved against the base
    /// directory. Map options are not understood: "map_Kd -s 2 2 1 wood.png"
    /// names the file "-s".
    /// @{
    const QString &getNewmtlName() const; ///< Of a "newmtl" line.
    const QString &getMapKdPath() const;  ///< Of a "map_Kd" line.
    const QString &getMapKsPath() const;  ///< Of a "map_Ks" line.
    const QString &getMapKaPath() const;  ///< Of a "map_Ka" line.
    const QString &getMapNsPath() const;  ///< Of a "map_Ns" line.
    /// @}

    /// The line at hand without its comment and the blanks around it.
    const QString &line() const;

private:
    bool readContentLine();
    void classify();
    void readWord();
    void readPath();

    bool _skipUnknown;
    QDir _baseDir;
    QTextStream *_stream;
    QString _line;
    QTextStream _lineStream;
    bool _parsedOk;
    int _lineType;
    Floats _values;
    QString _text;
};

/// @}

} // namespace Halvard::Orv
