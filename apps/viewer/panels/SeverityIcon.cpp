#include "SeverityIcon.h"

#include <QtGui/QIconEngine>
#include <QtGui/QPainter>

namespace Halvard::Orv::Viewer {

namespace {

/// Paints in a square of edge 16.
void paintError(QPainter &painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xd9, 0x3a, 0x3a));
    painter.drawEllipse(QRectF(1, 1, 14, 14));
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(5.5, 5.5), QPointF(10.5, 10.5));
    painter.drawLine(QPointF(10.5, 5.5), QPointF(5.5, 10.5));
}

void paintWarning(QPainter &painter)
{
    const QColor yellow(0xf2, 0xac, 0x1c);
    painter.setPen(QPen(yellow, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(yellow);
    painter.drawPolygon(QPolygonF({{8, 2.5}, {14, 13.5}, {2, 13.5}}));
    painter.setPen(QPen(QColor(0x33, 0x26, 0x00), 1.8, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(8, 6), QPointF(8, 9.5));
    painter.drawPoint(QPointF(8, 12.3));
}

void paintHint(QPainter &painter)
{
    painter.setPen(QPen(Qt::white, 1)); // or it is lost on the blue of chosen rows
    painter.setBrush(QColor(0x3b, 0x82, 0xd6));
    painter.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 3, 3);
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(8, 7.5), QPointF(8, 11.7));
    painter.drawPoint(QPointF(8, 4.4));
}

class SeverityIconEngine : public QIconEngine
{
public:
    explicit SeverityIconEngine(FindingSeverity severity) : _severity(severity) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const int side = std::min(rect.width(), rect.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rect).center());
        painter->scale(side / 16.0, side / 16.0);
        painter->translate(-8, -8);
        if (mode == QIcon::Disabled)
            painter->setOpacity(0.4);
        switch (_severity) {
        case FindingSeverity::Error:
            paintError(*painter);
            break;
        case FindingSeverity::Warning:
            paintWarning(*painter);
            break;
        case FindingSeverity::Hint:
            paintHint(*painter);
            break;
        }
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new SeverityIconEngine(_severity); }

private:
    FindingSeverity _severity;
};

} // namespace

QIcon severityIcon(FindingSeverity severity)
{
    return QIcon(new SeverityIconEngine(severity)); // which owns it
}

} // namespace Halvard::Orv::Viewer
