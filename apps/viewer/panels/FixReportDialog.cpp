#include "FixReportDialog.h"

#include "CopyKey.h"

#include <common/FindingLines.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

namespace Halvard::Orv::Viewer {

namespace {

int countOf(const ModelFindings &model, FindingSeverity severity)
{
    return int(std::count_if(model.findings.begin(), model.findings.end(),
                             [severity](const Finding &f) { return f.severity == severity; }));
}

/// "1 error, 2 warnings"
QString counted(int number, const QString &word)
{
    return number == 1 ? QStringLiteral("1 %1").arg(word)
                       : QStringLiteral("%1 %2s").arg(QString::number(number), word);
}

QString left(const ModelFindings &model)
{
    const int errors = countOf(model, FindingSeverity::Error);
    const int warnings = countOf(model, FindingSeverity::Warning);
    if (errors == 0 && warnings == 0)
        return FixReportDialog::tr("No error and no warning is left.");
    return FixReportDialog::tr("%1 and %2 are left: those have to be mended where the model was "
                               "made.")
        .arg(counted(errors, QStringLiteral("error")),
             counted(warnings, QStringLiteral("warning")));
}

} // namespace

FixReportDialog::FixReportDialog(std::shared_ptr<const ModelRepairReport> report, QWidget *parent)
    : QDialog(parent), _report(std::move(report))
{
    setObjectName(QStringLiteral("fixReport"));
    setWindowTitle(tr("Fixed"));
    auto *const text = new QLabel(summary());
    text->setObjectName(QStringLiteral("fixSummary"));
    text->setTextFormat(Qt::PlainText); // names of files are no markup
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QPushButton *const open =
        buttons->addButton(tr("&Open the Fixed Model"), QDialogButtonBox::AcceptRole);
    QPushButton *const copy = buttons->addButton(tr("&Copy List"), QDialogButtonBox::ActionRole);
    copy->setEnabled(!_report->result.changes.isEmpty());
    connect(copy, &QPushButton::clicked, this, [this] { copyText(changesAsText()); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(makeList(), 1);
    layout->addWidget(buttons);
    open->setDefault(true); // which it can be only in its window
    open->setFocus();
    resize(760, 420);
}

QString FixReportDialog::summary() const
{
    QStringList written;
    for (const QString &path : _report->result.written)
        written += QStringLiteral("'%1'").arg(printableText(QDir::toNativeSeparators(path)));
    const int changes = _report->result.changes.size();
    const QString changed = changes == 0 ? tr("Nothing had to be changed.")
                            : changes == 1
                                ? tr("One thing was changed.")
                                : tr("%1 things were changed.").arg(QLocale().toString(changes));
    return tr("Written: %1.\n%2 %3")
        .arg(written.join(QStringLiteral(", ")), changed, left(_report->left));
}

QString FixReportDialog::changesAsText() const
{
    QString text;
    for (const RepairChange &change : _report->result.changes)
        text += Apps::changeLine(change, false) + QLatin1Char('\n');
    return text;
}

QWidget *FixReportDialog::makeList()
{
    auto *const list = new QTreeWidget;
    list->setObjectName(QStringLiteral("fixChanges"));
    list->setAccessibleName(tr("Changes"));
    list->setHeaderLabels({tr("Line"), tr("Change"), tr("Mends")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->setAlternatingRowColors(true);
    const QDir folder(QFileInfo(_report->input).absolutePath());
    QList<QTreeWidgetItem *> items;
    for (const RepairChange &change : _report->result.changes) {
        const QString place = QStringLiteral("%1:%2").arg(
            printableText(folder.relativeFilePath(change.file)), QString::number(change.line));
        const QString sentence = Apps::changeSentence(change);
        auto *const item = new QTreeWidgetItem({place, sentence, change.code});
        item->setToolTip(1, QStringLiteral("<p>%1</p>").arg(sentence.toHtmlEscaped()));
        items += item;
    }
    list->addTopLevelItems(items);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    list->resizeColumnToContents(0);
    list->resizeColumnToContents(2);
    onCopyKey(list, [this] { copyText(changesAsText()); });
    return list;
}

} // namespace Halvard::Orv::Viewer
