#include "PictureDialog.h"

#include <render/Picture.h>

#include <QtCore/QLocale>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

#include <algorithm>

namespace Halvard::Orv::Viewer {

namespace {

QSpinBox *newSide(int value, const QString &name, QWidget *parent)
{
    auto *const side = new QSpinBox(parent);
    side->setObjectName(name);
    side->setRange(1, Render::LargestSide);
    side->setValue(value);
    return side;
}

QCheckBox *newCheckBox(const QString &text, bool isOn, const QString &name, QWidget *parent)
{
    auto *const box = new QCheckBox(text, parent);
    box->setObjectName(name);
    box->setChecked(isOn);
    return box;
}

} // namespace

PictureDialog::PictureDialog(const QSize &view, bool hasGrid, bool hasAxes, QWidget *parent)
    : QDialog(parent), _view(view), _scale(new QComboBox(this)),
      _width(newSide(view.width(), QStringLiteral("width"), this)),
      _height(newSide(view.height(), QStringLiteral("height"), this)),
      _transparent(
          newCheckBox(tr("&Transparent background"), false, QStringLiteral("transparent"), this)),
      _grid(newCheckBox(tr("&Grid"), hasGrid, QStringLiteral("grid"), this)),
      _axes(newCheckBox(tr("&Axes"), hasAxes, QStringLiteral("axes"), this)),
      _trouble(new QLabel(this)),
      _buttons(new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this))
{
    setWindowTitle(tr("Save Picture"));
    _scale->setObjectName(QStringLiteral("scale"));
    _scale->addItem(tr("As in the window"), 1);
    _scale->addItem(tr("Twice as large"), 2);
    _scale->addItem(tr("Four times as large"), 4);
    _scale->addItem(tr("Other"), 0);

    auto *const sides = new QHBoxLayout;
    sides->addWidget(_width, 1);
    sides->addWidget(new QLabel(QStringLiteral("×"), this));
    sides->addWidget(_height, 1);
    sides->addWidget(new QLabel(tr("pixels"), this));
    auto *const layout = new QFormLayout(this);
    layout->addRow(tr("&Size"), _scale);
    layout->addRow(QString(), sides);
    layout->addRow(QString(), _transparent);
    layout->addRow(QString(), _grid);
    layout->addRow(QString(), _axes);
    layout->addRow(_trouble);
    layout->addRow(_buttons);

    connect(_scale, QOverload<int>::of(&QComboBox::activated), this, &PictureDialog::chooseScale);
    for (const QSpinBox *side : {_width, _height}) {
        connect(side, QOverload<int>::of(&QSpinBox::valueChanged), this, [this] {
            _scale->setCurrentIndex(_scale->findData(0));
            check();
        });
    }
    connect(_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    check();
}

void PictureDialog::chooseScale(int index)
{
    const int scale = _scale->itemData(index).toInt();
    if (scale == 0)
        return;
    const QSignalBlocker width(_width);
    const QSignalBlocker height(_height);
    _width->setValue(std::min(_view.width() * scale, Render::LargestSide));
    _height->setValue(std::min(_view.height() * scale, Render::LargestSide));
    check();
}

void PictureDialog::check()
{
    const bool isFine = qint64(_width->value()) * _height->value() <= Render::LargestArea;
    _buttons->button(QDialogButtonBox::Save)->setEnabled(isFine);
    _trouble->setVisible(!isFine);
    _trouble->setText(tr("At most %1 pixels in all.").arg(QLocale().toString(Render::LargestArea)));
}

QSize PictureDialog::size() const
{
    return {_width->value(), _height->value()};
}

bool PictureDialog::isTransparent() const
{
    return _transparent->isChecked();
}

bool PictureDialog::hasGrid() const
{
    return _grid->isChecked();
}

bool PictureDialog::hasAxes() const
{
    return _axes->isChecked();
}

} // namespace Halvard::Orv::Viewer
