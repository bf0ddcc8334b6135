/// \file
/// A sentence over the picture.
#pragma once

#include <QtWidgets/QLabel>

namespace Halvard::Orv::Viewer {

/// In the middle of a widget, as long as there is something to say.
class Notice : public QLabel
{
    Q_OBJECT

public:
    explicit Notice(QWidget *over);

    enum class Kind
    {
        Stays,
        Goes ///< with a click
    };

    /// Plain text; an empty one takes the notice away.
    void say(const QString &text, Kind kind = Kind::Stays);
    /// Takes it away if it goes.
    void dismiss();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place();

    Kind _kind = Kind::Stays;
};

} // namespace Halvard::Orv::Viewer
