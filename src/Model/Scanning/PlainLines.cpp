#include "Scanning/PlainLines.h"

#include "Numbers/ASCIIBytes.h"
#include "Numbers/NumberConversion.h"

#include <algorithm>

namespace Halvard::Orv {

namespace {

/// A corner's indices as they stand in a file; 0 for one that is left out.
struct FileCorner
{
    int position = 0;
    int texCoord = 0;
    int normal = 0;
};

/// Reads what stands before the next slash, and moves `text` behind it.
bool takeIndex(const char *&text, const char *end, int &index)
{
    const char *const slash = std::find(text, end, '/');
    const bool isIndex = readPlainInt(text, slash, index);
    text = slash == end ? end : slash + 1;
    return isIndex;
}

/// As takeIndex(), but the index may be left out.
bool takeOptionalIndex(const char *&text, const char *end, int &index)
{
    if (text == end || *text == '/') {
        text += text == end ? 0 : 1;
        return true;
    }
    return takeIndex(text, end, index);
}

/// Reads "v", "v/vt", "v//vn" or "v/vt/vn"; further parts are not looked at.
bool readCorner(const char *begin, const char *end, FileCorner &corner)
{
    return takeIndex(begin, end, corner.position) &&
           takeOptionalIndex(begin, end, corner.texCoord) &&
           takeOptionalIndex(begin, end, corner.normal);
}

/// As OBJReader::resolveIndex() of a reader that has counted no values.
int resolved(int index)
{
    if (index > 0)
        return index - 1;
    return index == 0 ? OBJReader::AbsentIndex : index;
}

/// Collects the corners of one face.
class FaceAppender
{
public:
    explicit FaceAppender(OBJGeometry &geometry)
        : _geometry(geometry), _positionsBefore(geometry.positions.indices.size()),
          _texCoordsBefore(geometry.texCoords.indices.size()),
          _normalsBefore(geometry.normals.indices.size())
    {}

    /// \param corner indices as in the file, but those that count forward zero-based.
    void append(const OBJReader::Vertex &corner)
    {
        append(_geometry.positions, corner.v);
        append(_geometry.texCoords, corner.vt);
        append(_geometry.normals, corner.vn);
        ++_count;
    }

    void finish()
    {
        _geometry.cornerCounts.append(_count);
        _geometry.cornerCount += _count;
    }

    /// Takes the corners back.
    void drop()
    {
        drop(_geometry.positions, _positionsBefore);
        drop(_geometry.texCoords, _texCoordsBefore);
        drop(_geometry.normals, _normalsBefore);
    }

private:
    /// An attribute without values so far gets no index.
    static void append(OBJAttribute &attribute, int index)
    {
        if (!attribute.exists())
            return;
        if (index < 0) {
            const size_t at = attribute.indices.size();
            attribute.noteRelativeIndices(at, at + 1);
            index += static_cast<int>(attribute.valueCount());
        }
        attribute.indices.append(static_cast<quint32>(index));
    }

    static void drop(OBJAttribute &attribute, size_t indicesBefore)
    {
        attribute.indices.resize(indicesBefore);
        if (!attribute.relativeIndices)
            return;
        std::vector<IndexRange> &ranges = *attribute.relativeIndices;
        while (!ranges.empty() && ranges.back().begin >= indicesBefore)
            ranges.pop_back();
        if (!ranges.empty())
            ranges.back().end = std::min(ranges.back().end, indicesBefore);
    }

    OBJGeometry &_geometry;
    const size_t _positionsBefore;
    const size_t _texCoordsBefore;
    const size_t _normalsBefore;
    quint32 _count = 0;
};

} // namespace

const char *readPlainValue(const char *text, const char *end, OBJAttribute &attribute)
{
    float *const target = attribute.values.reserveMore(attribute.components);
    for (unsigned i = 0; i < attribute.components; ++i) {
        target[i] = 0.0f;
        text = skipBlanks(text);
        if (isLineEnd(text))
            continue;
        const char *const token = text;
        text = tokenEnd(token);
        if (!text)
            return nullptr;
        target[i] = floatFromToken(token, text);
    }
    attribute.values.commit(attribute.components);
    return lineAfter(text, end);
}

const char *readPlainFace(const char *text, const char *end, OBJGeometry &geometry)
{
    FaceAppender face(geometry);
    for (text = skipBlanks(text); !isLineEnd(text) && *text != '#'; text = skipBlanks(text)) {
        FileCorner corner;
        const char *const token = text;
        text = tokenEnd(token);
        if (!text || !readCorner(token, text, corner)) {
            face.drop();
            return nullptr;
        }
        face.append(
            {resolved(corner.position), resolved(corner.normal), resolved(corner.texCoord)});
    }
    face.finish();
    return lineAfter(text, end);
}

void appendValue(OBJAttribute &attribute, const float *value)
{
    std::copy_n(value, attribute.components, attribute.values.reserveMore(attribute.components));
    attribute.values.commit(attribute.components);
}

void appendFace(const OBJReader &line, OBJGeometry &geometry)
{
    FaceAppender face(geometry);
    for (int i = 0; i < line.getNumVertices(); ++i)
        face.append(line.getVertex(i));
    face.finish();
}

} // namespace Halvard::Orv
