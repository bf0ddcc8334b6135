#include "Reading/OBJLines.h"

#include <algorithm>

namespace Halvard::Orv::Checking {

bool OBJLines::next()
{
    const bool wasContinued = isContinued();
    if (!_text.next(_line)) {
        _kind = OBJLineKind::Nothing;
        return false;
    }
    _continuesAnother = wasContinued;
    _tokens.split(_line);
    classify();
    return true;
}

/// Counts the line, too: negative indices refer to the lines before a face, whether or not they
/// can be read.
void OBJLines::classify()
{
    _kind = OBJLineKind::Nothing;
    if (_tokens.isEmpty() || _tokens[0].startsWith('#'))
        return;
    _kind = OBJLineKind::Other;
    if (_tokens.is(0, "v")) {
        _kind = OBJLineKind::Position;
        ++_positions;
    } else if (_tokens.is(0, "vn")) {
        _kind = OBJLineKind::Normal;
        ++_normals;
    } else if (_tokens.is(0, "vt")) {
        _kind = OBJLineKind::TexCoord;
        ++_texCoords;
    } else if (_tokens.is(0, "f")) {
        _kind = OBJLineKind::Face;
    } else if (_tokens.is(0, "usemtl")) {
        _kind = OBJLineKind::Material;
    } else if (_tokens.is(0, "mtllib")) {
        _kind = OBJLineKind::Library;
    }
}

bool OBJLines::readCorners()
{
    _corners.clear();
    for (int i = 1; i < _tokens.size(); ++i) {
        const Token &token = _tokens[i];
        if (token.startsWith('#'))
            return true;
        WrittenCorner written;
        if (!readCorner(token, written)) {
            _badToken = i;
            return false;
        }
        _corners.push_back({resolved(written.v, _positions), resolved(written.vn, _normals),
                            resolved(written.vt, _texCoords)});
    }
    return true;
}

bool OBJLines::readCorner(const Token &token, WrittenCorner &corner) const
{
    corner = {};
    int *const targets[] = {&corner.v, &corner.vt, &corner.vn};
    const char *part = token.begin;
    for (int *target : targets) {
        const char *const slash = std::find(part, token.end, '/');
        const bool mayBeEmpty = target != &corner.v;
        if (!(mayBeEmpty && part == slash) &&
            !readInt(_tokens, part, slash, token.isPlain, *target))
            return false;
        ++corner.parts;
        if (slash == token.end)
            return true;
        part = slash + 1;
    }
    corner.parts += 1 + static_cast<int>(std::count(part, token.end, '/'));
    return true;
}

bool OBJLines::isContinued() const
{
    return !_tokens.isEmpty() && !_tokens[0].startsWith('#') &&
           _tokens[_tokens.size() - 1].endsWith('\\');
}

} // namespace Halvard::Orv::Checking
