#include "MaterialIcon.h"

#include <QtGui/QIconEngine>
#include <QtGui/QPainter>

namespace Halvard::Orv::Viewer {

namespace {

constexpr int Side = 28;

/// As screens show the numbers.
QColor colourOf(const QVector3D &values, float opacity)
{
    return QColor::fromRgbF(double(values.x()), double(values.y()), double(values.z()),
                            double(opacity));
}

void paintChecker(QPainter &painter, const QRect &rect)
{
    constexpr int Field = 7;
    painter.fillRect(rect, Qt::white);
    for (int y = 0; y < Side; y += Field)
        for (int x = (y / Field % 2) * Field; x < Side; x += 2 * Field)
            painter.fillRect(QRect(rect.x() + x, rect.y() + y, Field, Field), Qt::lightGray);
}

class MaterialIconEngine : public QIconEngine
{
public:
    explicit MaterialIconEngine(const ModelDetails::Material &material)
        : _colour(colourOf(material.values.diffuse, material.values.opacity)),
          _thumbnail(material.thumbnail), _hasTexture(!material.values.diffuseMap.path.isEmpty())
    {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode, QIcon::State) override
    {
        painter->save();
        const double scale = std::min(double(rect.width()) / MaterialIconSize.width(),
                                      double(rect.height()) / MaterialIconSize.height());
        painter->translate(rect.topLeft());
        painter->scale(scale, scale);
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        // Seen on light and on dark.
        painter->setPen(QPen(QColor(128, 128, 128), 1));
        paintSwatch(*painter, QRect(0, 0, Side, Side));
        if (_hasTexture)
            paintTexture(*painter, QRect(MaterialIconSize.width() - Side, 0, Side, Side));
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

    QIconEngine *clone() const override { return new MaterialIconEngine(*this); }

private:
    void paintSwatch(QPainter &painter, const QRect &rect) const
    {
        if (_colour.alpha() < 255)
            paintChecker(painter, rect);
        painter.setBrush(_colour);
        painter.drawRect(rect.adjusted(0, 0, -1, -1));
    }

    void paintTexture(QPainter &painter, const QRect &rect) const
    {
        if (!_thumbnail.isNull()) {
            paintChecker(painter, rect);
            // In the texture's proportions.
            QRect place(QPoint(0, 0), _thumbnail.size().scaled(rect.size(), Qt::KeepAspectRatio));
            place.moveCenter(rect.center());
            painter.drawImage(place, _thumbnail);
        }
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect.adjusted(0, 0, -1, -1));
        if (_thumbnail.isNull()) {
            painter.setPen(QPen(QColor(0xd9, 0x3a, 0x3a), 2));
            painter.drawLine(rect.topLeft() + QPoint(6, 6), rect.bottomRight() - QPoint(6, 6));
            painter.drawLine(rect.topRight() + QPoint(-6, 6), rect.bottomLeft() + QPoint(6, -6));
        }
    }

    QColor _colour;
    QImage _thumbnail;
    bool _hasTexture;
};

} // namespace

QIcon materialIcon(const ModelDetails::Material &material)
{
    return QIcon(new MaterialIconEngine(material)); // which owns it
}

} // namespace Halvard::Orv::Viewer
