#include "FrameTimes.h"

#include <algorithm>

namespace {

QString line(const QString &name, const QString &things, std::vector<double> milliseconds)
{
    if (milliseconds.empty())
        return name + ": none\n";
    std::sort(milliseconds.begin(), milliseconds.end());
    const size_t count = milliseconds.size();
    return QString("%1: %2 %3, half of them within %4 ms, 99 % within %5 ms, the longest %6 ms\n")
        .arg(name)
        .arg(count)
        .arg(things)
        .arg(milliseconds[count / 2], 0, 'f', 1)
        .arg(milliseconds[count * 99 / 100], 0, 'f', 1)
        .arg(milliseconds.back(), 0, 'f', 1);
}

} // namespace

void FrameTimes::beginFrame()
{
    if (_frame.isValid())
        _milliseconds[size_t(_phase)].push_back(double(_frame.nsecsElapsed()) / 1e6);
    _frame.start();
    _phase = Phase::Idle;
}

QString FrameTimes::report() const
{
    return line("without a load", "frames", _milliseconds[size_t(Phase::Idle)]) +
           line("while preparing", "frames", _milliseconds[size_t(Phase::Preparing)]) +
           line("while uploading", "frames", _milliseconds[size_t(Phase::Uploading)]) +
           line("the uploads alone", "steps", _uploads) +
           line("a model's first frame", "frames", _milliseconds[size_t(Phase::FirstDraw)]);
}
