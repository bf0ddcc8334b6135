#include "ProgressBar.h"

namespace Halvard::Orv::Viewer {

namespace {

constexpr int Steps = 1000;

} // namespace

ProgressBar::ProgressBar(QWidget *parent) : QProgressBar(parent)
{
    setRange(0, Steps);
    setTextVisible(false);
    setMaximumSize(180, 12);
    _timer.setSingleShot(true);
    _timer.setInterval(50);
    connect(&_timer, &QTimer::timeout, this, &ProgressBar::follow);
}

void ProgressBar::tell(double fraction)
{
    _fraction = fraction;
    if (!isVisible())
        follow(); // which paints nothing
    else if (!_timer.isActive())
        _timer.start();
}

void ProgressBar::follow()
{
    setValue(int(_fraction * Steps));
}

} // namespace Halvard::Orv::Viewer
