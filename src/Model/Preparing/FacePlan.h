/// \file
/// The faces of a model cut into tasks.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <QtCore/QVector>
#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {

/// Successive faces of one group.
struct FacePiece
{
    FaceRun run;
    quint32 group; ///< its place among the groups
};

/// Successive pieces, in the order in which triangles are wanted.
struct FaceTask
{
    size_t firstPiece;
    size_t endPiece;
    /// Triangles of the tasks before at most: those of faces that cannot be cut are missing.
    quint64 trianglesBefore;
};

/// Runs of faces cut into pieces, and these gathered into tasks that take about as long.
class FacePlan
{
public:
    /// \param groups in the order in which their triangles are wanted.
    /// \param facesPerTask also the most faces of a piece.
    FacePlan(const CornerCounts &counts, const QVector<const FaceGroup *> &groups,
             quint32 facesPerTask);

    const std::vector<FacePiece> &pieces() const { return _pieces; }
    const std::vector<FaceTask> &tasks() const { return _tasks; }
    /// The first corner of a task, in the order of the file.
    quint32 firstCorner(size_t task) const
    {
        return _pieces[_tasks[task].firstPiece].run.firstCorner;
    }

private:
    void add(const CornerCounts &counts, FaceRun run, quint32 group, quint32 facesPerTask);

    std::vector<FacePiece> _pieces;
    std::vector<FaceTask> _tasks;
    quint64 _triangles = 0;
    quint32 _facesInTask = 0;
};

} // namespace Halvard::Orv
