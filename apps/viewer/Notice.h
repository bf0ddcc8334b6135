/// \file
/// A sentence over the picture.
#pragma once

#include <QtWidgets/QLabel>

namespace Halvard::Orv::Viewer {

/// In the middle of a widget, as long as there is something to say. Lets the mouse through.
class Notice : public QLabel
{
    Q_OBJECT

public:
    explicit Notice(QWidget *over);

    /// Plain text; an empty one takes the notice away.
    void say(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place();
};

} // namespace Halvard::Orv::Viewer
