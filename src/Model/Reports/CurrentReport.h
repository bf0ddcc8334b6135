/// \file
/// The report that what runs on this thread fills in.
#pragma once

#include <OrvModel/PreparationReport.h>

#include <QtCore/QElapsedTimer>

namespace Halvard::Orv {

/// Makes preparations on this thread fill in `report` while the object lives. Reports nest: the
/// innermost is filled in.
class ScopedReport
{
public:
    explicit ScopedReport(PreparationReport &report);
    ~ScopedReport();
    ScopedReport(const ScopedReport &) = delete;
    ScopedReport &operator=(const ScopedReport &) = delete;

private:
    PreparationReport *_outer;
};

/// The report installed on this thread, or null: a builder that is filled by hand has none.
PreparationReport *currentReport();

/// Adds the time it lives to one stage of the current report, if there is one.
class StageTimer
{
public:
    explicit StageTimer(qint64 PreparationReport::Stages::*stage);
    ~StageTimer();
    StageTimer(const StageTimer &) = delete;
    StageTimer &operator=(const StageTimer &) = delete;

private:
    PreparationReport *_report;
    qint64 PreparationReport::Stages::*_stage;
    QElapsedTimer _timer;
};

} // namespace Halvard::Orv
