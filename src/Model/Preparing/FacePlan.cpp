#include "Preparing/FacePlan.h"

#include "Preparing/FaceSums.h"

#include <algorithm>

namespace Halvard::Orv {

FacePlan::FacePlan(const CornerCounts &counts, const QVector<const FaceGroup *> &groups,
                   quint32 facesPerTask)
{
    for (int group = 0; group < groups.size(); ++group) {
        for (const FaceRun &run : groups.at(group)->runs)
            add(counts, run, static_cast<quint32>(group), facesPerTask);
    }
}

void FacePlan::add(const CornerCounts &counts, FaceRun run, quint32 group, quint32 facesPerTask)
{
    for (quint32 left = run.faceCount; left > 0;) {
        if (_tasks.empty() || _facesInTask >= facesPerTask) {
            _tasks.push_back({_pieces.size(), _pieces.size(), _triangles});
            _facesInTask = 0;
        }
        run.faceCount = std::min(left, facesPerTask - _facesInTask);
        _pieces.push_back({run, group});
        _tasks.back().endPiece = _pieces.size();

        const FaceSums sums(counts, run.firstFace, run.faceCount, run.firstLarge);
        _triangles += sums.triangles;
        _facesInTask += run.faceCount;
        left -= run.faceCount;
        run.firstFace += run.faceCount;
        run.firstCorner += static_cast<quint32>(sums.corners);
        run.firstLarge += sums.large;
    }
}

} // namespace Halvard::Orv
