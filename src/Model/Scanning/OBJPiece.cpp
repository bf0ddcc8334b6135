#include "Scanning/OBJPiece.h"

#include <OrvModel/OBJReader.h>

#include <algorithm>
#include <cstring>

namespace Halvard::Orv {

namespace {

/// In the order of AttributeFlags.
template <typename Geometry>
auto attributesOf(Geometry &geometry)
{
    return std::array<decltype(&geometry.positions), 3>{&geometry.positions, &geometry.normals,
                                                        &geometry.texCoords};
}

template <typename T>
bool hasRoom(const GrowArray<T> &array, size_t count)
{
    return array.capacity() - array.size() >= count;
}

/// Makes `count` elements part of the array, and tells where they begin.
template <typename T>
T *claimed(GrowArray<T> &array, size_t count)
{
    T *const begin = array.data() + array.size();
    array.commit(count);
    return begin;
}

template <typename T>
void copy(const GrowArray<T> &from, T *to)
{
    if (!from.isEmpty())
        std::memcpy(to, from.data(), from.size() * sizeof(T));
}

/// Makes indices count from the first value of the file that counted from the piece's.
void shift(quint32 *indices, const std::vector<IndexRange> &ranges, quint32 valuesBefore)
{
    for (const IndexRange &range : ranges) {
        for (quint32 *index = indices + range.begin; index != indices + range.end; ++index)
            *index += *index == quint32(OBJReader::AbsentIndex) ? 0 : valuesBefore;
    }
}

} // namespace

OBJPiece::OBJPiece(const QString &baseDir, const LineDecoder &decoder)
    : _scanner(baseDir, decoder, _geometry, *this)
{
    for (size_t i = 0; i < 3; ++i)
        attributesOf(_geometry)[i]->relativeIndices = &_relativeIndices[i];
}

TextEnd OBJPiece::scan(const TextPiece &text, const AttributeFlags &existBefore)
{
    for (size_t i = 0; i < 3; ++i) {
        OBJAttribute &attribute = *attributesOf(_geometry)[i];
        attribute.values.resize(0);
        attribute.indices.resize(0);
        attribute.existsBefore = existBefore[i];
        _relativeIndices[i].clear();
    }
    _geometry.cornerCounts.small.resize(0);
    _geometry.cornerCounts.large.resize(0);
    _geometry.cornerCount = 0;
    _existBefore = existBefore;
    _events.clear();
    return _scanner.scan(text);
}

bool OBJPiece::dependsOn(const AttributeFlags &existBefore) const
{
    return _geometry.faceCount() > 0 && existBefore != _existBefore;
}

AttributeFlags OBJPiece::existing() const
{
    return {!_geometry.positions.values.isEmpty(), !_geometry.normals.values.isEmpty(),
            !_geometry.texCoords.values.isEmpty()};
}

bool OBJPiece::fits(const OBJGeometry &whole) const
{
    bool fit = hasRoom(whole.cornerCounts.small, _geometry.cornerCounts.small.size()) &&
               hasRoom(whole.cornerCounts.large, _geometry.cornerCounts.large.size());
    for (size_t i = 0; i < 3; ++i) {
        const OBJAttribute &from = *attributesOf(_geometry)[i];
        const OBJAttribute &to = *attributesOf(whole)[i];
        fit = fit && hasRoom(to.values, from.values.size()) &&
              hasRoom(to.indices, from.indices.size());
    }
    return fit;
}

void OBJPiece::makeRoom(OBJGeometry &whole) const
{
    whole.cornerCounts.small.reserveMore(_geometry.cornerCounts.small.size());
    whole.cornerCounts.large.reserveMore(_geometry.cornerCounts.large.size());
    for (size_t i = 0; i < 3; ++i) {
        const OBJAttribute &from = *attributesOf(_geometry)[i];
        OBJAttribute &to = *attributesOf(whole)[i];
        to.values.reserveMore(from.values.size());
        to.indices.reserveMore(from.indices.size());
    }
}

PiecePlace OBJPiece::claim(OBJGeometry &whole) const
{
    PiecePlace place;
    for (size_t i = 0; i < 3; ++i) {
        const OBJAttribute &from = *attributesOf(_geometry)[i];
        OBJAttribute &to = *attributesOf(whole)[i];
        place.attributes[i].valuesBefore = to.valueCount();
        place.attributes[i].values = claimed(to.values, from.values.size());
        place.attributes[i].indices = claimed(to.indices, from.indices.size());
    }
    place.small = claimed(whole.cornerCounts.small, _geometry.cornerCounts.small.size());
    place.large = claimed(whole.cornerCounts.large, _geometry.cornerCounts.large.size());
    whole.cornerCount += _geometry.cornerCount;
    return place;
}

void OBJPiece::copyTo(const PiecePlace &place) const
{
    for (size_t i = 0; i < 3; ++i) {
        const OBJAttribute &from = *attributesOf(_geometry)[i];
        const PiecePlace::Attribute &to = place.attributes[i];
        copy(from.values, to.values);
        copy(from.indices, to.indices);
        shift(to.indices, _relativeIndices[i], to.valuesBefore);
    }
    copy(_geometry.cornerCounts.small, place.small);
    copy(_geometry.cornerCounts.large, place.large);
}

void OBJPiece::select(const QString &material)
{
    note(MaterialEvent::Select, material);
}

/// Whether the library is there shows later.
bool OBJPiece::load(const QString &libraryPath)
{
    note(MaterialEvent::Load, libraryPath);
    return true;
}

void OBJPiece::note(MaterialEvent::Kind kind, const QString &text)
{
    _events.push_back({kind, text, _geometry.endOfFaces(), countsOf(_geometry)});
}

} // namespace Halvard::Orv
