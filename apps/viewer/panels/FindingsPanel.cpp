#include "FindingsPanel.h"

#include "CopyKey.h"
#include "FindingText.h"
#include "FindingsFilter.h"
#include "FindingsModel.h"
#include "FixReportDialog.h"
#include "SeverityIcon.h"

#include "../ProgressBar.h"

#include <common/FindingLines.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QAction>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTextBrowser>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QTreeView>
#include <QtWidgets/QVBoxLayout>

#include <optional>

namespace Halvard::Orv::Viewer {

namespace {

struct SeverityText
{
    FindingSeverity severity;
    const char *name; ///< of the object, and of the severity
    const char *one;
    const char *many;
};

constexpr SeverityText Severities[] = {
    {FindingSeverity::Error, "errors", "%1 Error", "%1 Errors"},
    {FindingSeverity::Warning, "warnings", "%1 Warning", "%1 Warnings"},
    {FindingSeverity::Hint, "hints", "%1 Hint", "%1 Hints"}};

/// Beside the model, where it and its textures are found.
QString outputFor(const QString &path)
{
    const QFileInfo info(path);
    return info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral("_fixed.obj");
}

} // namespace

FindingsPanel::FindingsPanel(QWidget *parent)
    : QWidget(parent), _findings(new FindingsModel(this)),
      _filter(new FindingsFilter(*_findings, this))
{
    setObjectName(QStringLiteral("findingsPanel"));
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(makeTools());
    layout->addWidget(makeStatus());
    layout->addWidget(makeList(), 1);
    makeMenu();
    connectWork();
    tell(tr("No model is open."), false);
    tellResult();
}

FindingsPanel::~FindingsPanel() = default;

QWidget *FindingsPanel::makeTools()
{
    auto *const tools = new QWidget;
    auto *const layout = new QHBoxLayout(tools);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const SeverityText &text : Severities) {
        auto *const button = new QToolButton;
        button->setObjectName(QLatin1String(text.name));
        button->setIcon(severityIcon(text.severity));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setCheckable(true);
        button->setChecked(true);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setToolTip(tr("List the %1, or not").arg(QLatin1String(text.name)));
        connect(button, &QToolButton::toggled, this, [this, severity = text.severity](bool isOn) {
            relist([&] { _filter->setListed(severity, isOn); });
        });
        layout->addWidget(button);
        _severities[size_t(text.severity)] = button;
    }
    _text = new QLineEdit;
    _text->setObjectName(QStringLiteral("findingsText"));
    _text->setPlaceholderText(tr("Filter"));
    _text->setToolTip(tr("List the findings with this text in their message, file or code"));
    _text->setClearButtonEnabled(true);
    connect(_text, &QLineEdit::textChanged, this,
            [this](const QString &text) { relist([&] { _filter->setText(text); }); });
    layout->addWidget(_text, 1);
    _fix = new QPushButton(tr("Fi&x and Save As ..."));
    _fix->setObjectName(QStringLiteral("fix"));
    connect(_fix, &QPushButton::clicked, this, &FindingsPanel::askForOutput);
    layout->addWidget(_fix);
    return tools;
}

QWidget *FindingsPanel::makeStatus()
{
    auto *const line = new QWidget;
    auto *const layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    _status = new QLabel;
    _status->setObjectName(QStringLiteral("findingsStatus"));
    _status->setTextFormat(Qt::PlainText); // names of files are no markup
    _status->setWordWrap(true);
    _progress = new ProgressBar;
    _stop = new QPushButton(tr("Cancel"));
    _stop->setObjectName(QStringLiteral("stopChecking"));
    connect(_stop, &QPushButton::clicked, this, [this] {
        _checker.stop();
        _fixer.stop();
        tellResult();
    });
    layout->addWidget(_status, 1);
    layout->addWidget(_progress);
    layout->addWidget(_stop);
    return line;
}

QWidget *FindingsPanel::makeList()
{
    _list = new QTreeView;
    _list->setObjectName(QStringLiteral("findings"));
    _list->setAccessibleName(tr("Findings"));
    _list->setModel(_filter);
    _list->setRootIsDecorated(false);
    _list->setUniformRowHeights(true);
    _list->setAllColumnsShowFocus(true);
    _list->setAlternatingRowColors(true);
    _list->setSortingEnabled(true);
    _list->sortByColumn(FindingsModel::Severity, Qt::AscendingOrder);
    QHeaderView *const header = _list->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(FindingsModel::Message, QHeaderView::Stretch);
    connect(_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FindingsPanel::flyToChosen);
    // A finding that is chosen already is flown to again: the camera may have gone elsewhere.
    connect(_list, &QTreeView::clicked, this, &FindingsPanel::flyToChosen);
    connect(_list, &QTreeView::activated, this, &FindingsPanel::flyToChosen);
    onCopyKey(_list, [this] { copyText(chosenPlace()); });

    _details = new QTextBrowser;
    _details->setObjectName(QStringLiteral("findingDetails"));
    _details->setAccessibleName(tr("The chosen finding"));
    _details->setOpenLinks(false);
    _details->setPlaceholderText(
        tr("Choose a finding to fly to it, and to read what follows from it and what to do."));
    onCopyKey(_details, [this] { _details->copy(); });

    _splitter = new QSplitter;
    _splitter->setChildrenCollapsible(false);
    _splitter->addWidget(_list);
    _splitter->addWidget(_details);
    _splitter->setStretchFactor(0, 5);
    _splitter->setStretchFactor(1, 2);
    return _splitter;
}

void FindingsPanel::makeMenu()
{
    const auto add = [this](const QString &text, const QString &name, auto textOf) {
        auto *const action = new QAction(text, _list);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, [this, textOf] {
            if (chosen())
                copyText(textOf(*chosen()));
        });
        _list->addAction(action);
    };
    // No shortcut of the actions: two with the same keys would keep each other quiet.
    add(tr("Copy File and Line\tCtrl+C"), QStringLiteral("copyPlace"),
        [this](const Finding &) { return chosenPlace(); });
    add(tr("Copy Finding"), QStringLiteral("copyFinding"),
        [](const Finding &finding) { return Apps::findingLine(finding); });
    _list->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void FindingsPanel::connectWork()
{
    const auto tellProgress = [this](double fraction) { _progress->tell(fraction); };
    connect(&_checker, &ModelChecker::progressed, this, tellProgress);
    connect(&_fixer, &ModelFixer::progressed, this, tellProgress);
    connect(&_checker, &ModelChecker::checked, this,
            [this](const std::shared_ptr<const ModelFindings> &findings) {
                _isChecked = true;
                show(findings);
                tellResult();
            });
    connect(&_checker, &ModelChecker::failed, this, [this](const QString &sentence) {
        show(nullptr);
        tellResult();
        tell(sentence, false);
    });
    connect(&_fixer, &ModelFixer::fixed, this, &FindingsPanel::showReport);
    connect(&_fixer, &ModelFixer::failed, this, &FindingsPanel::warn);
}

void FindingsPanel::setModelFile(const QString &path, bool isShown)
{
    _checker.stop();
    if (path != _path || isShown != _isShown)
        show(nullptr);
    _path = path;
    _isShown = isShown;
    _isChecked = false;
    _isWaiting = !isVisible();
    if (!_isWaiting)
        check();
}

QSize FindingsPanel::sizeHint() const
{
    return {800, 200};
}

void FindingsPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (std::exchange(_isWaiting, false))
        check();
}

void FindingsPanel::check()
{
    tell(tr("Checking '%1' ...").arg(QFileInfo(_path).fileName()), true);
    _fix->setEnabled(false);
    _checker.check(_path);
}

/// Changes what is listed. What was chosen stays chosen as long as it is there.
void FindingsPanel::relist(const std::function<void()> &change)
{
    std::optional<Finding> before;
    if (const Finding *finding = chosen())
        before = *finding;
    {
        const QSignalBlocker blocker(this); // nobody asked to fly
        // The view would choose the neighbour of one that goes.
        _list->setCurrentIndex({});
        _list->clearSelection();
        change();
        const int row = before ? _findings->rowOf(*before) : -1;
        if (row >= 0)
            chooseRow(_filter->mapFromSource(_findings->index(row, 0)).row());
    }
    showChosen();
}

void FindingsPanel::show(const std::shared_ptr<const ModelFindings> &findings)
{
    relist([&] { _findings->setFindings(findings); });
    for (const SeverityText &text : Severities) {
        const int count = _findings->count(text.severity);
        _severities[size_t(text.severity)]->setText(
            tr(count == 1 ? text.one : text.many).arg(count));
    }
    for (const int column :
         {FindingsModel::Severity, FindingsModel::Place, FindingsModel::Faces, FindingsModel::Code})
        _list->resizeColumnToContents(column);
}

void FindingsPanel::tell(const QString &text, bool isWorking)
{
    _status->setText(text);
    _progress->tell(0);
    _progress->setVisible(isWorking);
    _stop->setVisible(isWorking);
    _status->parentWidget()->setVisible(!text.isEmpty());
}

/// What there is to say when no work is under way.
void FindingsPanel::tellResult()
{
    const bool canFix = _isChecked && _findings->hasFixable();
    _fix->setEnabled(canFix);
    _fix->setToolTip(canFix ? tr("Write a copy of the model without what can be mended")
                            : tr("Nothing in this model can be mended by itself"));
    const QString name = QFileInfo(_path).fileName();
    if (_path.isEmpty())
        return;
    if (!_isChecked)
        tell(tr("'%1' is not checked. Reload it to check it.").arg(name), false);
    else if (_findings->rowCount() == 0)
        tell(tr("There is nothing to say about '%1'.").arg(name), false);
    else
        tell(_isShown ? QString() : tr("About '%1', which is not shown:").arg(name), false);
}

const Finding *FindingsPanel::chosen() const
{
    const QModelIndexList rows = _list->selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : &_filter->finding(rows.first());
}

QString FindingsPanel::chosenPlace() const
{
    const Finding *const finding = chosen();
    return finding ? QStringLiteral("%1:%2").arg(QDir::toNativeSeparators(finding->file),
                                                 QString::number(finding->line))
                   : QString();
}

std::vector<QVector3D> FindingsPanel::chosenCorners() const
{
    const Finding *const finding = chosen();
    if (!finding || !_isShown)
        return {};
    return {finding->corners.begin(), finding->corners.end()};
}

void FindingsPanel::showChosen()
{
    const Finding *const finding = chosen();
    _details->setHtml(finding ? findingHtml(*finding) : QString());
    emit cornersChosen(chosenCorners());
}

void FindingsPanel::flyToChosen()
{
    showChosen();
    if (!chosenCorners().empty())
        emit flightWanted(chosenCorners());
}

void FindingsPanel::chooseRow(int row)
{
    const QModelIndex index = _filter->index(row, 0);
    if (!index.isValid())
        return;
    _list->setCurrentIndex(index); // which selects it
    _list->scrollTo(index);
}

void FindingsPanel::choose(int step)
{
    const int rows = _filter->rowCount();
    if (rows == 0)
        return;
    const QModelIndexList now = _list->selectionModel()->selectedRows();
    const int first = step > 0 ? 0 : rows - 1;
    chooseRow(now.isEmpty() ? first : (now.first().row() + step + rows) % rows);
}

void FindingsPanel::chooseNext()
{
    choose(1);
}

void FindingsPanel::choosePrevious()
{
    choose(-1);
}

void FindingsPanel::askForOutput()
{
    auto *const dialog = new QFileDialog(this, tr("Fix and Save As"), QFileInfo(_path).path(),
                                         tr("Wavefront OBJ models (*.obj *.OBJ);;All files (*)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("obj"));
    dialog->selectFile(outputFor(_path));
    connect(dialog, &QFileDialog::fileSelected, this, &FindingsPanel::fixInto);
    dialog->open();
}

void FindingsPanel::fixInto(const QString &output)
{
    tell(tr("Fixing '%1' ...").arg(QFileInfo(_path).fileName()), true);
    _fix->setEnabled(false);
    _fixer.fix(_path, output);
}

void FindingsPanel::showReport(const std::shared_ptr<const ModelRepairReport> &report)
{
    tellResult();
    auto *const dialog = new FixReportDialog(report, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this,
            [this, output = report->output] { emit openRequested(output); });
    dialog->open();
}

void FindingsPanel::warn(const QString &sentence)
{
    tellResult();
    auto *const box =
        new QMessageBox(QMessageBox::Warning, tr("Not Fixed"), sentence, QMessageBox::Close, this);
    box->setTextFormat(Qt::PlainText); // names of files are no markup
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void FindingsPanel::resizeEvent(QResizeEvent *event)
{
    // Beside the list where there is room, else below.
    constexpr int WideEnough = 760;
    _splitter->setOrientation(width() >= WideEnough ? Qt::Horizontal : Qt::Vertical);
    QWidget::resizeEvent(event);
}

} // namespace Halvard::Orv::Viewer
