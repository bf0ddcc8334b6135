/// \file
/// What a load found and where its time went, for the project's own tools.
///
/// Not installed: `orv info` and the benchmarks ask for a report by installing
/// one on their thread; without one the loader only passes a null pointer by.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QMap>
#include <QtCore/QtGlobal>

namespace Halvard::Orv {

struct LoadReport
{
    /// Nanoseconds of wall time. `gl` holds what is spent in the OpenGL driver:
    /// making and filling buffers and bundles.
    struct Stages
    {
        qint64 read = 0;
        qint64 weld = 0;
        qint64 triangulate = 0;
        qint64 normals = 0;
        qint64 gl = 0;
    };

    quint64 positions = 0;
    quint64 normals = 0;
    quint64 texCoords = 0;
    quint64 faces = 0;
    quint64 corners = 0;
    /// Corner count to number of faces.
    QMap<quint32, quint64> facesByCornerCount;
    qint64 gpuVerticesBeforeWelding = 0;
    qint64 gpuVertices = 0;
    Stages stages;
};

/// Makes loads on this thread fill `report` while the object lives.
class ORVMODEL_EXPORT ScopedLoadReport
{
public:
    explicit ScopedLoadReport(LoadReport &report);
    ~ScopedLoadReport();
    ScopedLoadReport(const ScopedLoadReport &) = delete;
    ScopedLoadReport &operator=(const ScopedLoadReport &) = delete;

private:
    LoadReport *_outer;
};

/// The report installed on this thread, or null.
LoadReport *currentLoadReport();

/// Adds the time it lives to one stage of the current report, if there is one.
class StageTimer
{
public:
    explicit StageTimer(qint64 LoadReport::Stages::*stage);
    ~StageTimer();
    StageTimer(const StageTimer &) = delete;
    StageTimer &operator=(const StageTimer &) = delete;

private:
    LoadReport *_report;
    qint64 LoadReport::Stages::*_stage;
    QElapsedTimer _timer;
};

} // namespace Halvard::Orv
