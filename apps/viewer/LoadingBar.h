/// \file
/// How far a load is, with a button to cancel it.
#pragma once

#include <QtWidgets/QWidget>

class QLabel;
class QToolButton;

namespace Halvard::Orv::Viewer {

class ProgressBar;

/// For a status bar; hidden while nothing is loaded.
class LoadingBar : public QWidget
{
    Q_OBJECT

public:
    explicit LoadingBar(QWidget *parent = nullptr);

    /// \param fraction from 0 to 1.
    void tell(const QString &what, double fraction);

signals:
    void cancelled();

private:
    QLabel *_what;
    ProgressBar *_bar;
    QToolButton *_cancel;
};

} // namespace Halvard::Orv::Viewer
