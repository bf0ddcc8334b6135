#include "Reports/LoadReport.h"

namespace Halvard::Orv {

namespace {

thread_local LoadReport *installedReport = nullptr;

} // namespace

ScopedLoadReport::ScopedLoadReport(LoadReport &report) : _outer(installedReport)
{
    installedReport = &report;
}

ScopedLoadReport::~ScopedLoadReport()
{
    installedReport = _outer;
}

LoadReport *currentLoadReport()
{
    return installedReport;
}

StageTimer::StageTimer(qint64 LoadReport::Stages::*stage) : _report(installedReport), _stage(stage)
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
