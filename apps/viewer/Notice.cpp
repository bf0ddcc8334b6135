#include "Notice.h"

#include <QtCore/QEvent>

#include <algorithm>

namespace Halvard::Orv::Viewer {

Notice::Notice(QWidget *over) : QLabel(over)
{
    setObjectName(QStringLiteral("notice"));
    setTextFormat(Qt::PlainText); // names of files are no markup
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setStyleSheet(
        QStringLiteral("#notice { background: palette(window); color: palette(window-text);"
                       " border: 1px solid palette(mid); border-radius: 6px;"
                       " padding: 14px 18px; }"));
    over->installEventFilter(this);
    hide();
}

void Notice::say(const QString &text, Kind kind)
{
    _kind = kind;
    // Others let the mouse through to the picture.
    setAttribute(Qt::WA_TransparentForMouseEvents, kind == Kind::Stays);
    setToolTip(kind == Kind::Goes ? tr("Click to take this away") : QString());
    setText(text);
    place();
    setVisible(!text.isEmpty());
}

void Notice::dismiss()
{
    if (_kind == Kind::Goes)
        say(QString());
}

void Notice::mousePressEvent(QMouseEvent *)
{
    dismiss();
}

bool Notice::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QLabel::eventFilter(watched, event);
}

void Notice::place()
{
    constexpr int Border = 24;
    constexpr int WidestLine = 460;
    const QSize room = parentWidget()->size() - QSize(2 * Border, 2 * Border);
    const int width = std::max(std::min(room.width(), WidestLine), 1);
    resize(width, std::min(std::max(heightForWidth(width), 1), std::max(room.height(), 1)));
    move((parentWidget()->width() - this->width()) / 2, (parentWidget()->height() - height()) / 2);
}

} // namespace Halvard::Orv::Viewer
