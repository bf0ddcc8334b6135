#include "Scanning/FaceGrouping.h"

#include "Libraries/MaterialLibraries.h"

namespace Halvard::Orv {

FaceGrouping::FaceGrouping(OBJGeometry &geometry, const MaterialLibraries &libraries,
                           const QString &material)
    : _geometry(geometry), _libraries(libraries), _material(material)
{
    openRun();
}

void FaceGrouping::select(const QString &material)
{
    if (material == _material)
        return;
    closeRun();
    _material = material;
    openRun();
}

void FaceGrouping::startRun()
{
    closeRun();
    openRun();
}

void FaceGrouping::openRun()
{
    _isKnown = _libraries.hasMaterial(_material);
    _run.firstFace = _geometry.faceCount();
    _run.firstCorner = _geometry.cornerCount;
    _run.firstLarge = static_cast<quint32>(_geometry.cornerCounts.large.size());
}

void FaceGrouping::closeRun()
{
    _run.faceCount = _geometry.faceCount() - _run.firstFace;
    if (_run.faceCount == 0)
        return;
    if (!_isKnown) {
        addUnknownRun();
        return;
    }
    auto number = _groupNumbers.constFind(_material);
    if (number == _groupNumbers.constEnd()) {
        number = _groupNumbers.insert(_material, _geometry.groups.size());
        _geometry.groups.push_back({_material, {}});
    }
    std::vector<FaceRun> &runs = _geometry.groups[*number].runs;
    if (!runs.empty() && runs.back().firstFace + runs.back().faceCount == _run.firstFace)
        runs.back().faceCount += _run.faceCount;
    else
        runs.push_back(_run);
}

void FaceGrouping::addUnknownRun()
{
    auto number = _unknownNumbers.constFind(_material);
    if (number == _unknownNumbers.constEnd()) {
        number = _unknownNumbers.insert(_material, _geometry.withoutMaterial.size());
        _geometry.withoutMaterial.push_back({_material, {}});
    }
    _geometry.withoutMaterial[*number].faces.add(_run.firstFace, _run.faceCount);
}

} // namespace Halvard::Orv
