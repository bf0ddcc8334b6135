#include "CopyKey.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QWidget>

namespace Halvard::Orv::Viewer {

namespace {

class CopyKey : public QObject
{
public:
    CopyKey(QWidget *widget, std::function<void()> copy) : QObject(widget), _copy(std::move(copy))
    {
        widget->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool isOverride = event->type() == QEvent::ShortcutOverride;
        if (!isOverride && event->type() != QEvent::KeyPress)
            return QObject::eventFilter(watched, event);
        if (!static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy))
            return false;
        // Accepted, an override keeps the window's shortcut quiet, and the key press follows.
        event->accept();
        if (!isOverride)
            _copy();
        return true;
    }

private:
    std::function<void()> _copy;
};

} // namespace

void onCopyKey(QWidget *widget, std::function<void()> copy)
{
    new CopyKey(widget, std::move(copy)); // the widget's
}

void copyText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace Halvard::Orv::Viewer
