/// \file
/// The materials of the model.
#pragma once

#include "../LoadedFile.h"

#include <QtWidgets/QWidget>

#include <memory>

class QLabel;
class QLineEdit;
class QModelIndex;
class QSortFilterProxyModel;
class QTreeView;

namespace Halvard::Orv::Viewer {

class MaterialsModel;

/// The materials in a list. The chosen one stands out in the picture, until it is chosen once more,
/// Escape is pressed, or the panel goes.
class MaterialsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit MaterialsPanel(QWidget *parent = nullptr);

    /// Lists those of another model, or of a new version of the same, whose chosen material stays.
    void setDetails(const std::shared_ptr<const ModelDetails> &details);

    QSize sizeHint() const override;

signals:
    /// \param name null for none.
    void materialChosen(const QString &name);

protected:
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void makeList();
    QString chosen() const;
    void showChosen();
    void clicked();
    void choose(const QString &name);

    MaterialsModel *_materials;
    QSortFilterProxyModel *_filter;
    QLineEdit *_text;
    QTreeView *_list;
    QLabel *_empty;
    bool _isNewlyChosen = false;
};

} // namespace Halvard::Orv::Viewer
