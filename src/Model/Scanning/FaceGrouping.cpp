#include "Scanning/FaceGrouping.h"

#include "Libraries/MaterialLibraries.h"

namespace Halvard::Orv {

FaceGrouping::FaceGrouping(OBJGeometry &geometry, const MaterialLibraries &libraries,
                           const QString &material)
    : _geometry(geometry), _libraries(libraries), _material(material)
{
    openRun({});
}

void FaceGrouping::select(const QString &material, const FacePlace &end)
{
    if (material == _material)
        return;
    closeRun(end);
    _material = material;
    openRun(end);
}

void FaceGrouping::startRun(const FacePlace &end)
{
    closeRun(end);
    openRun(end);
}

void FaceGrouping::openRun(const FacePlace &begin)
{
    _isKnown = _libraries.hasMaterial(_material);
    _run = {begin.face, 0, begin.corner, begin.large};
}

void FaceGrouping::closeRun(const FacePlace &end)
{
    _run.faceCount = end.face - _run.firstFace;
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
