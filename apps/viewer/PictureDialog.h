/// \file
/// How large a picture is to be, and what is to be in it.
#pragma once

#include <QtCore/QSize>
#include <QtWidgets/QDialog>

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QSpinBox;

namespace Halvard::Orv::Viewer {

class PictureDialog : public QDialog
{
    Q_OBJECT

public:
    /// \param view the size of the picture in the window, in pixels.
    PictureDialog(const QSize &view, bool hasGrid, bool hasAxes, QWidget *parent = nullptr);

    QSize size() const;
    bool isTransparent() const;
    bool hasGrid() const;
    bool hasAxes() const;

private:
    void chooseScale(int index);
    void check();

    const QSize _view;
    QComboBox *_scale;
    QSpinBox *_width;
    QSpinBox *_height;
    QCheckBox *_transparent;
    QCheckBox *_grid;
    QCheckBox *_axes;
    QLabel *_trouble;
    QDialogButtonBox *_buttons;
};

} // namespace Halvard::Orv::Viewer
