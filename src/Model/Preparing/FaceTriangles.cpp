// Nearly all faces have three or four corners. Their triangles are fixed but for
// the face's winding, which is found for four faces at a time.
#include "Preparing/FaceTriangles.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace Halvard::Orv {

namespace {

/// Faces that one call to the winding test looks at.
constexpr unsigned Lanes = 4;

/// Corner counts of as many faces.
using Counts = quint8[Lanes];
constexpr Counts AllTriangles = {3, 3, 3, 3};
constexpr Counts AllQuads = {4, 4, 4, 4};

bool isSmall(quint8 count)
{
    return count == 3 || count == 4;
}

} // namespace

FaceTriangles::FaceTriangles(const CornerCounts &counts, const quint32 *corners,
                             const float *positions, quint32 *out, VertexNormalSums *normals)
    : _counts(counts), _corners(corners), _positions(positions), _begin(out), _end(out),
      _normals(normals)
{}

void FaceTriangles::addRun(const FaceRun &run)
{
    const quint8 *counts = _counts.small.data() + run.firstFace;
    const quint8 *const end = counts + run.faceCount;
    const quint32 *large = _counts.large.data() + run.firstLarge;
    const quint32 *corners = _corners + run.firstCorner;
    while (counts != end) {
        if (end - counts >= Lanes && std::memcmp(counts, AllTriangles, Lanes) == 0) {
            addFourTriangles(corners);
            corners += 3 * Lanes;
            counts += Lanes;
        } else if (end - counts >= Lanes && std::memcmp(counts, AllQuads, Lanes) == 0) {
            addFourQuads(corners);
            corners += 4 * Lanes;
            counts += Lanes;
        } else if (isSmall(*counts)) {
            const quint8 *const last = counts + std::min<ptrdiff_t>(Lanes, end - counts);
            const quint8 *const next = std::find_if_not(counts, last, isSmall);
            addSmallFaces(counts, static_cast<unsigned>(next - counts), corners);
            corners = std::accumulate(counts, next, corners);
            counts = next;
        } else {
            const quint32 count = *counts == CornerCounts::Escape ? *large++ : *counts;
            const quint32 *const firstNew = _end;
            addFace(count, corners);
            addNormals(firstNew);
            if (_end == firstNew)
                noteFailure(count, static_cast<quint32>(counts - _counts.small.data()));
            corners += count;
            ++counts;
        }
    }
}

void FaceTriangles::noteFailure(quint32 count, quint32 face)
{
    const bool hasTooFew = count < 3;
    (hasTooFew ? _withTooFewCorners : _notTriangulated).add(face, 1);
    if (_keepsMessages)
        _failures.push_back(hasTooFew);
}

void FaceTriangles::warn() const
{
    constexpr int Enough = 5;
    for (const bool hasTooFew : _failures)
        EarClipping::warn(hasTooFew ? 0 : Enough);
}

void FaceTriangles::addFourTriangles(const quint32 *corners)
{
    const Points4 p0 = loadCorners<3>(corners, 0, _positions);
    const Points4 p1 = loadCorners<3>(corners, 1, _positions);
    const Points4 p2 = loadCorners<3>(corners, 2, _positions);
    const Windings windings = triangleWindings(p0, p1, p2);
    if ((windings.clockwise | windings.undecided) != 0) {
        addSmallFaces(AllTriangles, Lanes, corners, windings);
        return;
    }
    if (_normals)
        _normals->addFour(triangleNormals(p0, p1, p2), corners);
    // All is read before anything is written: the two may overlap.
    quint32 triangles[3 * Lanes];
    std::memcpy(triangles, corners, sizeof triangles);
    std::memcpy(_end, triangles, sizeof triangles);
    _end += 3 * Lanes;
}

void FaceTriangles::addFourQuads(const quint32 *corners)
{
    const Points4 p0 = loadCorners<4>(corners, 0, _positions);
    const Points4 p1 = loadCorners<4>(corners, 1, _positions);
    const Points4 p2 = loadCorners<4>(corners, 2, _positions);
    const Points4 p3 = loadCorners<4>(corners, 3, _positions);
    const Windings windings = quadWindings(p0, p1, p2, p3);
    if ((windings.clockwise | windings.undecided) != 0) {
        addSmallFaces(AllQuads, Lanes, corners, windings);
        return;
    }
    const quint32 *const firstNew = _end;
    for (unsigned face = 0; face < Lanes; ++face)
        addSmallFace(4, corners + 4 * face, false);
    if (_normals) {
        const Points4 first = triangleNormals(p0, p1, p3);
        const Points4 second = triangleNormals(p1, p2, p3);
        _normals->addFour(interleavedLower(first, second), firstNew);
        _normals->addFour(interleavedUpper(first, second), firstNew + 3 * Lanes);
    }
}

void FaceTriangles::addSmallFaces(const quint8 *counts, unsigned faceCount, const quint32 *corners)
{
    quint32 faces[4 * Lanes];
    const quint32 *next = corners;
    for (unsigned lane = 0; lane < Lanes; ++lane) {
        // What lanes without a face look at does not matter, but it must exist.
        const unsigned face = lane < faceCount ? lane : 0;
        if (face == 0)
            next = corners;
        std::copy_n(next, 3, faces + 4 * lane);
        faces[4 * lane + 3] = next[counts[face] - 1u];
        next += counts[face];
    }
    addSmallFaces(
        counts, faceCount, corners,
        quadWindings(loadCorners<4>(faces, 0, _positions), loadCorners<4>(faces, 1, _positions),
                     loadCorners<4>(faces, 2, _positions), loadCorners<4>(faces, 3, _positions)));
}

void FaceTriangles::addSmallFaces(const quint8 *counts, unsigned faceCount, const quint32 *corners,
                                  Windings windings)
{
    const quint32 *const firstNew = _end;
    for (unsigned face = 0; face < faceCount; ++face) {
        if ((windings.undecided >> face & 1u) != 0)
            addFace(counts[face], corners);
        else
            addSmallFace(counts[face], corners, (windings.clockwise >> face & 1u) != 0);
        corners += counts[face];
    }
    addNormals(firstNew);
}

/// Hands the triangles from `firstNew` on to the normals.
void FaceTriangles::addNormals(const quint32 *firstNew)
{
    if (_normals)
        _normals->add(firstNew, static_cast<size_t>(_end - firstNew));
}

/// The fixed triangles of three and four corners.
void FaceTriangles::addSmallFace(unsigned count, const quint32 *corners, bool clockwise)
{
    // Read first: the triangles may replace the corners.
    const quint32 c0 = corners[0];
    const quint32 c1 = corners[1];
    const quint32 c2 = corners[2];
    const auto addTriangle = [this, clockwise](quint32 first, quint32 second, quint32 third) {
        _end[0] = first;
        _end[1] = clockwise ? third : second;
        _end[2] = clockwise ? second : third;
        _end += 3;
    };
    if (count == 3) {
        addTriangle(c0, c1, c2);
    } else {
        const quint32 c3 = corners[3];
        addTriangle(c0, c1, c3);
        addTriangle(c1, c2, c3);
    }
}

void FaceTriangles::addFace(quint32 count, const quint32 *corners)
{
    const auto *vertices = reinterpret_cast<const int *>(corners);
    const QVector<int> &triangles =
        _triangulation.triangulate(static_cast<int>(count), vertices, _positions);
    // A triangle may replace the corners that it is made of.
    quint32 triangle[3];
    for (int i = 0; i < triangles.size(); i += 3) {
        for (int k = 0; k < 3; ++k)
            triangle[k] = corners[triangles.at(i + k)];
        _end = std::copy_n(triangle, 3, _end);
    }
}

} // namespace Halvard::Orv
