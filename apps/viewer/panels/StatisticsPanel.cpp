#include "StatisticsPanel.h"

#include "CopyKey.h"

#include <QtWidgets/QAction>
#include <QtWidgets/QHeaderView>

#include <vector>

namespace Halvard::Orv::Viewer {

namespace {

enum Column
{
    Label,
    Value,
    Remark,
    ColumnCount
};

} // namespace

StatisticsPanel::StatisticsPanel(QWidget *parent) : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("statistics"));
    setAccessibleName(tr("Statistics"));
    setColumnCount(ColumnCount);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setIndentation(14);
    header()->setStretchLastSection(true);
    connect(this, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem *item) {
        if (!item->parent())
            _folded.insert(item->text(Label));
    });
    connect(this, &QTreeWidget::itemExpanded, this,
            [this](QTreeWidgetItem *item) { _folded.remove(item->text(Label)); });

    auto *const copyAll = new QAction(tr("Copy All\tCtrl+C"), this);
    connect(copyAll, &QAction::triggered, this, &StatisticsPanel::copy);
    addAction(copyAll);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    onCopyKey(this, [this] { copy(); });
}

void StatisticsPanel::setSummary(const Apps::ModelSummary &summary)
{
    _summary = summary;
    clear();
    for (const Apps::SummarySection &section : Apps::summarySections(summary))
        addSection(section);
    resizeColumnToContents(Label);
    resizeColumnToContents(Value);
}

QSize StatisticsPanel::sizeHint() const
{
    return {320, 300};
}

void StatisticsPanel::addSection(const Apps::SummarySection &section)
{
    auto *const head = new QTreeWidgetItem(this, {section.heading});
    QFont bold = font();
    bold.setBold(true);
    head->setFont(Label, bold);
    head->setFirstColumnSpanned(true);
    std::vector<QTreeWidgetItem *> parents = {head}; // by indent
    for (const Apps::SummaryRow &row : section.rows) {
        parents.resize(std::min(parents.size(), size_t(row.indent)));
        auto *const item = new QTreeWidgetItem(parents.back(), {row.label, row.value, row.remark});
        item->setTextAlignment(Value, Qt::AlignRight | Qt::AlignVCenter);
        // Paths are long.
        item->setToolTip(Label, QStringLiteral("<p>%1</p>").arg(row.label.toHtmlEscaped()));
        item->setFirstColumnSpanned(row.value.isEmpty());
        item->setExpanded(true);
        parents.push_back(item);
    }
    for (int i = 0; i < head->childCount(); ++i)
        head->child(i)->setExpanded(true);
    head->setExpanded(!_folded.contains(section.heading));
}

void StatisticsPanel::copy() const
{
    copyText(Apps::summaryText(_summary));
}

} // namespace Halvard::Orv::Viewer
