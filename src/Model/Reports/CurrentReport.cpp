#include "Reports/CurrentReport.h"

namespace Halvard::Orv {

namespace {

thread_local PreparationReport *installedReport = nullptr;

} // namespace

ScopedReport::ScopedReport(PreparationReport &report) : _outer(installedReport)
{
    installedReport = &report;
}

ScopedReport::~ScopedReport()
{
    installedReport = _outer;
}

PreparationReport *currentReport()
{
    return installedReport;
}

StageTimer::StageTimer(qint64 PreparationReport::Stages::*stage)
    : _report(installedReport), _stage(stage)
{
    if (_report)
        _timer.start();
}

StageTimer::~StageTimer()
{
    if (_report)
        _report->stages.*_stage += _timer.nsecsElapsed();
}

} // namespace Halvard::Orv
