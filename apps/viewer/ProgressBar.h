/// \file
/// A progress bar that is told often.
#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QProgressBar>

namespace Halvard::Orv::Viewer {

/// Follows what it is told some times a second. Every step that is painted has the whole window put
/// together again, at once, while other events wait.
class ProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    explicit ProgressBar(QWidget *parent = nullptr);

    /// \param fraction from 0 to 1.
    void tell(double fraction);

private:
    void follow();

    QTimer _timer;
    double _fraction = 0;
};

} // namespace Halvard::Orv::Viewer
