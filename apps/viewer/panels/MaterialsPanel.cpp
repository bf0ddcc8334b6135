#include "MaterialsPanel.h"

#include "MaterialIcon.h"
#include "MaterialsModel.h"

#include "CopyKey.h"

#include <QtCore/QSortFilterProxyModel>
#include <QtGui/QHideEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTreeView>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

namespace Halvard::Orv::Viewer {

MaterialsPanel::MaterialsPanel(QWidget *parent)
    : QWidget(parent), _materials(new MaterialsModel(this)),
      _filter(new QSortFilterProxyModel(this)), _text(new QLineEdit), _list(new QTreeView),
      _empty(new QLabel(tr("No material is drawn.")))
{
    setObjectName(QStringLiteral("materialsPanel"));
    _filter->setSourceModel(_materials);
    _filter->setSortRole(MaterialsModel::SortRole);
    _filter->setSortCaseSensitivity(Qt::CaseInsensitive);
    _filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    _filter->setFilterKeyColumn(MaterialsModel::Name);
    _text->setObjectName(QStringLiteral("materialsText"));
    _text->setPlaceholderText(tr("Filter"));
    _text->setToolTip(tr("List the materials with this text in their name"));
    _text->setClearButtonEnabled(true);
    connect(_text, &QLineEdit::textChanged, this, [this](const QString &text) {
        const QString before = chosen();
        choose(QString()); // the view would choose the neighbour of one that goes
        _filter->setFilterFixedString(text);
        choose(before);
    });
    makeList();

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(_text);
    layout->addWidget(_empty);
    layout->addWidget(_list, 1);
    setDetails(nullptr);
}

void MaterialsPanel::makeList()
{
    _list->setObjectName(QStringLiteral("materials"));
    _list->setAccessibleName(tr("Materials"));
    _list->setModel(_filter);
    _list->setIconSize(MaterialIconSize);
    _list->setRootIsDecorated(false);
    _list->setUniformRowHeights(true);
    _list->setAllColumnsShowFocus(true);
    _list->setSortingEnabled(true);
    _list->header()->setSortIndicator(-1, Qt::AscendingOrder); // the model's own order
    _list->setToolTip(tr("Choose a material to see where it is"));
    _list->installEventFilter(this);
    connect(_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        _isNewlyChosen = true;
        showChosen();
    });
    connect(_list, &QTreeView::clicked, this, &MaterialsPanel::clicked);
    onCopyKey(_list, [this] { copyText(chosen()); });
}

void MaterialsPanel::setDetails(const std::shared_ptr<const ModelDetails> &details)
{
    const QString before = chosen();
    _materials->setDetails(details);
    const bool isEmpty = _materials->rowCount() == 0;
    _empty->setVisible(isEmpty && details);
    constexpr int WidestName = 200;
    _list->resizeColumnToContents(MaterialsModel::Name);
    _list->setColumnWidth(MaterialsModel::Name,
                          std::min(_list->columnWidth(MaterialsModel::Name), WidestName));
    _list->resizeColumnToContents(MaterialsModel::Triangles);
    choose(before);
    showChosen();
}

QSize MaterialsPanel::sizeHint() const
{
    return {320, 300};
}

QString MaterialsPanel::chosen() const
{
    const QModelIndexList rows = _list->selectionModel()->selectedRows();
    return rows.isEmpty() ? QString() : rows.first().data(MaterialsModel::NameRole).toString();
}

void MaterialsPanel::showChosen()
{
    emit materialChosen(chosen());
}

/// Takes the choice back where it was there before.
void MaterialsPanel::clicked()
{
    if (!std::exchange(_isNewlyChosen, false))
        choose(QString());
}

void MaterialsPanel::choose(const QString &name)
{
    const QModelIndexList found =
        name.isNull() ? QModelIndexList()
                      : _filter->match(_filter->index(0, 0), MaterialsModel::NameRole, name, 1,
                                       Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (found.isEmpty()) {
        _list->setCurrentIndex({});
        _list->clearSelection();
    } else {
        _list->setCurrentIndex(found.first()); // which selects it
    }
    _isNewlyChosen = false;
}

void MaterialsPanel::hideEvent(QHideEvent *event)
{
    // Nobody would know how to end it. A window that is made an icon comes back as it was.
    if (!event->spontaneous())
        choose(QString());
    QWidget::hideEvent(event);
}

bool MaterialsPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape && !chosen().isNull()) {
        choose(QString());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Halvard::Orv::Viewer
