/// \file
/// The lines of an OBJ file: all of them, with what the loader's line reader makes of each.
#pragma once

#include "Reading/LineTokens.h"
#include "Reading/Numbers.h"
#include "Reading/TextLines.h"

#include <vector>

namespace Halvard::Orv::Checking {

/// What a line of an OBJ file is.
enum class OBJLineKind
{
    Nothing,  ///< Blank, or a comment.
    Position, ///< "v"
    Normal,   ///< "vn"
    TexCoord, ///< "vt"
    Face,     ///< "f"
    Library,  ///< "mtllib"
    Material, ///< "usemtl"
    Other     ///< Any other keyword: the loader passes over it.
};

/// A corner of a face as OBJReader::Vertex has it: zero-based indices, which may lie outside what
/// the file holds on either side.
struct Corner
{
    static constexpr int Absent = 0x7fffffff;

    int v = Absent;
    int vn = Absent;
    int vt = Absent;
};

/// The indices of a corner as they are written; 0 for those that are left out.
struct WrittenCorner
{
    int v = 0;
    int vt = 0;
    int vn = 0;
    int parts = 0; ///< Number of parts between slashes.
};

/// Steps through all lines of an OBJ file. Beside what OBJReader tells, it knows the number and
/// the bytes of each line, and passes over none.
class OBJLines
{
public:
    explicit OBJLines(QIODevice &device) : _text(device), _tokens(_text) {}
    OBJLines(QIODevice &device, const TextLines::Limits &limits)
        : _text(device, limits), _tokens(_text)
    {}

    /// Moves to the next line, whatever it is; false at the end.
    bool next();

    OBJLineKind kind() const { return _kind; }
    const TextLine &line() const { return _line; }
    const LineTokens &tokens() const
    {
        if (!_isSplit)
            split();
        return _tokens;
    }
    const TextLines &text() const { return _text; }

    /// \name Number of lines of a kind so far, this one included
    /// @{
    int positions() const { return _positions; }
    int normals() const { return _normals; }
    int texCoords() const { return _texCoords; }
    /// @}

    /// Reads the line as a keyword and exactly `count` numbers in plain notation, each finite and
    /// within a float's range.
    /// \return false for any other line; the numbers are then to be read one by one.
    bool readPlainValues(int count, float *values) const;

    /// Reads the corners of a face: those before a token that begins with "#".
    /// \return false where a token is no corner; the loader then drops the face.
    bool readCorners();
    /// The corners that readCorners() read.
    const std::vector<Corner> &corners() const { return _corners; }
    /// The token at which readCorners() gave up.
    int badToken() const { return _badToken; }

    /// Reads "v", "v/vt", "v//vn" or "v/vt/vn", where further parts are not looked at.
    bool readCorner(const Token &token, WrittenCorner &corner) const;

    /// Zero-based index for one as written, with `count` values read so far.
    static int resolved(int index, int count)
    {
        if (index > 0)
            return index - 1;
        return index == 0 ? Corner::Absent : index + count;
    }

    /// Whether the line ends in a backslash: by the format it goes on in the next one. For the
    /// loader it does not.
    bool isContinued() const;
    /// Whether the line before this one is such a line.
    bool continuesAnother() const { return _continuesAnother; }

private:
    void split() const;
    void classify(const char *keyword, const char *end);
    bool readPlainCorners();

    TextLines _text;
    mutable LineTokens _tokens; // most lines are read without: split when asked for
    mutable bool _isSplit = true;
    TextLine _line;
    const char *_afterKeyword = nullptr; // null where the keyword is not plain
    OBJLineKind _kind = OBJLineKind::Nothing;
    bool _continuesAnother = false;
    int _positions = 0;
    int _normals = 0;
    int _texCoords = 0;
    std::vector<Corner> _corners;
    int _badToken = 0;
};

} // namespace Halvard::Orv::Checking
