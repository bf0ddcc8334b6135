#include "FaceCheck.h"

#include <algorithm>
#include <limits>

namespace Halvard::Orv::Checking {

namespace {

constexpr quint32 FewestCorners = 3;

/// Shorter normals have no direction for QVector3D::normalize(), which shaders' authors trust.
constexpr double ShortestNormal = 1e-6;

} // namespace

void FaceCheck::begin(Attribute &attribute, qint64 line)
{
    if (attribute.values++ == 0) {
        attribute.firstLine = line;
        attribute.cornersBefore = _corners;
    }
}

void FaceCheck::addPosition(const float *xyz, qint64 line)
{
    begin(_v, line);
    _positions.append(xyz[0], xyz[1], xyz[2]);
    _isUsed.push_back(false);
}

void FaceCheck::addNormal(const float *xyz, qint64 line)
{
    begin(_normals, line);
    _directions.append(xyz);
    const double x = double(xyz[0]);
    const double y = double(xyz[1]);
    const double z = double(xyz[2]);
    if (x * x + y * y + z * z < ShortestNormal * ShortestNormal)
        _findings.at(Code::NormalWithoutLength).add(line);
}

void FaceCheck::addTexCoord(qint64 line)
{
    begin(_texCoords, line);
}

void FaceCheck::addFace(qint64 line, const std::vector<Corner> &corners, int material)
{
    ++_faces;
    Face face;
    face.line = line;
    face.corners = static_cast<quint32>(corners.size());
    face.material = static_cast<quint32>(material) & 0x7fffffffu;
    face.isGrouped = _materials[material].isDefined;
    _wasExamined = false;
    const bool hasPositionsLate = _v.cornersBefore > 0 || _v.values == 0;
    if (hasPositionsLate) {
        _waiting.push_back(face);
        if (_v.values > 0) {
            for (const Corner &corner : corners)
                _waitingIndices.push_back(corner.v);
        }
    } else {
        _indices.clear();
        for (const Corner &corner : corners)
            _indices.push_back(corner.v);
        place(face, _indices.data());
    }
    _corners += face.corners;
    takeWaiting(false);
    if (hasPositionsLate) // what was examined is another face
        _wasExamined = false;

    for (const Corner &corner : corners)
        countIndex(_v, "v", corner.v, line);
    if (face.corners >= FewestCorners) {
        for (const Corner &corner : corners) {
            countIndex(_normals, "vn", corner.vn, line);
            countIndex(_texCoords, "vt", corner.vt, line);
            if (corner.vt == Corner::Absent)
                _materials[material].lacksTexCoords = true;
        }
        compareNormals(face, corners);
    }
}

/// Hands on the waiting faces whose indices are there. The last ones of a file may never get
/// all of theirs: such corners select nothing.
void FaceCheck::takeWaiting(bool isLast)
{
    while (!_waiting.empty()) {
        const Face face = _waiting.front();
        if (_waitingIndices.size() < face.corners && !isLast)
            return;
        _waiting.pop_front();
        const auto known =
            static_cast<std::ptrdiff_t>(std::min<size_t>(face.corners, _waitingIndices.size()));
        _indices.assign(_waitingIndices.begin(), _waitingIndices.begin() + known);
        _waitingIndices.erase(_waitingIndices.begin(), _waitingIndices.begin() + known);
        _indices.resize(face.corners, Corner::Absent);
        place(face, _indices.data());
    }
}

/// Looks at a face, or puts it by where a position is still to come.
void FaceCheck::place(const Face &face, const int *positions)
{
    const auto count = static_cast<int>(_positions.count());
    const auto mayCome = [count](int index) { return index >= count && index != Corner::Absent; };
    if (std::any_of(positions, positions + face.corners, mayCome)) {
        _deferred.push_back(face);
        _deferredIndices.insert(_deferredIndices.end(), positions, positions + face.corners);
        return;
    }
    examine(face, positions);
}

/// Counts a face, now that the positions of its corners are what they will be.
void FaceCheck::examine(const Face &face, const int *positions)
{
    bool isSound = _v.cornersBefore == 0;
    _ring.resize(3 * static_cast<size_t>(face.corners));
    float *point = _ring.data();
    for (quint32 i = 0; i < face.corners; ++i, point += 3) {
        const auto index = static_cast<size_t>(positions[i]); // huge where negative
        const bool exists = index < _positions.count();
        if (exists) {
            _isUsed[index] = true;
            std::copy_n(_positions[index], 3, point);
        } else {
            std::fill_n(point, 3, 0.0f); // as the loader has it
            isSound = false;
        }
    }
    _shape = _shapes.examine(static_cast<int>(face.corners), _ring.data());
    _wasExamined = true;
    if (face.corners < FewestCorners) {
        tell(Code::FaceTooFewCorners, face, true);
    } else if (_shape.triangles == 0) {
        tell(_shape.hasNoArea ? Code::FaceWithoutArea : Code::FaceNotTriangulable, face, true);
    } else if (face.isGrouped) {
        ++_materials[static_cast<int>(face.material)].drawnFaces;
        _triangles += _shape.triangles;
    } else {
        Material &material = _materials[static_cast<int>(face.material)];
        if (material.lostFaces++ == 0)
            material.lostCorners = corners(face);
    }
    // What is odd about a shape that the file does not give is not the shape.
    if (isSound && _shape.triangles > 0)
        tellShape(face);
}

void FaceCheck::tellShape(const Face &face)
{
    if (_shape.hasCoincidentCorners)
        tell(Code::CornersCoincide, face);
    else if (_shape.hasNoArea)
        tell(Code::FaceWithoutArea, face);
    if (_shape.isTurnedOver)
        tell(Code::FaceImprecise, face);
    if (_shape.isSplitWrongly)
        tell(Code::QuadSplitWrongly, face);
    if (_shape.isNotPlanar)
        tell(Code::FaceNotPlanar, face);
}

/// Where the face being examined is.
QVector<QVector3D> FaceCheck::corners(const Face &face) const
{
    const auto count = std::min<size_t>(face.corners, Finding::MaxCorners);
    QVector<QVector3D> corners;
    for (size_t i = 0; i < count; ++i)
        corners.append({_ring[3 * i], _ring[3 * i + 1], _ring[3 * i + 2]});
    return corners;
}

void FaceCheck::tell(Code code, const Face &face, bool isLost)
{
    Tally &tally = _findings.at(code);
    if (tally.add(face.line)) {
        tally.corners = corners(face);
        tally.detail = QString::number(face.corners);
    }
    if (isLost) {
        ++tally.faces;
        tally.severity = FindingSeverity::Error;
    }
}

void FaceCheck::countIndex(Attribute &attribute, const char *name, int index, qint64 line)
{
    if (index == Corner::Absent) {
        if (attribute.absent++ == 0)
            attribute.firstAbsentLine = line;
        return;
    }
    ++attribute.selecting;
    if (index < 0) {
        _findings.at(Code::IndexSelectsNothing, QLatin1String(name)).add(line);
    } else if (index >= attribute.values) {
        const auto shortLine =
            static_cast<quint32>(std::min<qint64>(line, std::numeric_limits<quint32>::max()));
        if (attribute.values > 0) {
            attribute.unknown.push_back({shortLine, index});
            return;
        }
        if (attribute.early++ == 0)
            attribute.firstEarly = {shortLine, index};
        if (index > attribute.largestEarly.index)
            attribute.largestEarly = {shortLine, index};
    }
}

/// Compares the normals of a face's corners with the side from which its ring runs
/// counter-clockwise.
void FaceCheck::compareNormals(const Face &face, const std::vector<Corner> &corners)
{
    if (!_wasExamined || _shape.triangles == 0 || _shape.hasNoArea || _normals.cornersBefore > 0)
        return;
    double agreement = 0;
    for (const Corner &corner : corners) {
        const auto index = static_cast<size_t>(corner.vn);
        if (index >= _directions.count())
            return;
        const qint16 *normal = _directions[index];
        agreement += _shape.normal[0] * double(normal[0]) + _shape.normal[1] * double(normal[1]) +
                     _shape.normal[2] * double(normal[2]);
    }
    if (agreement < 0)
        tell(Code::NormalsAgainstWinding, face);
}

void FaceCheck::finish()
{
    takeWaiting(true);
    const int *positions = _deferredIndices.data();
    for (const Face &face : _deferred) {
        examine(face, positions);
        positions += face.corners;
    }
    finishIndices(_v, "v");
    finishIndices(_normals, "vn");
    finishIndices(_texCoords, "vt");
    finishPlace(_v, "v");
    finishPlace(_normals, "vn");
    finishPlace(_texCoords, "vt");
    if (_v.absent > 0)
        _findings.at(Code::IndexSelectsNothing, QStringLiteral("v"))
            .add(_v.firstAbsentLine, _v.absent);
    finishNormals();
    finishTexCoords();
    countUnused();
}

/// Tells which indices select nothing, now that all values are known.
void FaceCheck::finishIndices(const Attribute &attribute, const char *name)
{
    const QString subject = QLatin1String(name);
    for (const Attribute::Unknown &unknown : attribute.unknown) {
        if (unknown.index >= attribute.values)
            _findings.at(Code::IndexSelectsNothing, subject).add(unknown.line);
    }
    if (attribute.values > 0) {
        if (attribute.largestEarly.index >= attribute.values)
            _findings.at(Code::IndexSelectsNothing, subject).add(attribute.largestEarly.line);
    } else if (attribute.early > 0 && &attribute != &_v) {
        // Without any value the model goes without the attribute.
        Tally &tally = _findings.at(Code::IndexSelectsNothing, subject);
        tally.add(attribute.firstEarly.line, attribute.early);
        tally.severity = FindingSeverity::Hint;
        tally.detail = QStringLiteral("none");
    }
    // A position that nothing gives cannot be made up.
    Tally *const tally = _findings.find(Code::IndexSelectsNothing, subject);
    if (tally && attribute.values > 0 && &attribute != &_v)
        tally->isFixable = true;
}

bool FaceCheck::comesAfterFaces(const Attribute &attribute) const
{
    return attribute.values > 0 && _corners > 0 && attribute.cornersBefore == _corners;
}

bool FaceCheck::hasAttributeAfterFaces() const
{
    return comesAfterFaces(_v) || comesAfterFaces(_normals) || comesAfterFaces(_texCoords);
}

/// Tells whether the values begin where the loader's indices are sound.
void FaceCheck::finishPlace(const Attribute &attribute, const char *name)
{
    const QString subject = QLatin1String(name);
    if (comesAfterFaces(attribute))
        _findings.at(Code::AttributeAfterFaces, subject).add(attribute.firstLine, attribute.values);
    else if (attribute.values > 0 && attribute.cornersBefore > 0)
        _findings.at(Code::AttributeBeginsLate, subject)
            .add(attribute.firstLine, attribute.cornersBefore);
}

void FaceCheck::finishNormals()
{
    if (_normals.values == 0 || comesAfterFaces(_normals) || _corners == 0)
        return;
    if (_normals.selecting == 0)
        _findings.at(Code::NormalsUnused).add(_normals.firstLine, _normals.values);
    else if (_normals.absent > 0)
        _findings.at(Code::CornerWithoutNormal).add(_normals.firstAbsentLine, _normals.absent);
}

/// Corners without texture coordinates matter where a texture wants them.
void FaceCheck::finishTexCoords()
{
    if (_texCoords.selecting == 0 || _texCoords.values == 0 || _texCoords.absent == 0 ||
        comesAfterFaces(_texCoords))
        return;
    Tally &tally = _findings.at(Code::CornerWithoutTexCoord);
    tally.add(_texCoords.firstAbsentLine, _texCoords.absent);
    const auto wantsThem = [](const Material &material) {
        return material.hasMap && material.lacksTexCoords && material.drawnFaces > 0;
    };
    if (std::none_of(_materials.all().cbegin(), _materials.all().cend(), wantsThem)) {
        tally.severity = FindingSeverity::Hint;
        tally.isFixable = false; // it would be work for nothing
    }
}

void FaceCheck::countUnused()
{
    for (size_t i = 0; i < _isUsed.size(); ++i) {
        if (_isUsed[i])
            continue;
        if (_unusedPositions++ == 0)
            _firstUnusedPosition = static_cast<qint64>(i);
    }
}

} // namespace Halvard::Orv::Checking
