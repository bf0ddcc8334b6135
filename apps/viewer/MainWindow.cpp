#include "MainWindow.h"

#include "FileWatch.h"
#include "LoadingBar.h"
#include "ModelLoader.h"
#include "Notice.h"
#include "RecentFiles.h"
#include "ShortcutsSheet.h"
#include "Viewport.h"
#include "WindowActions.h"
#include "panels/Panels.h"

#include <OrvModel/ModelVersions.h>
#include <render/Overlays.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QMimeData>
#include <QtGui/QCloseEvent>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtWidgets/QAction>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>

namespace Halvard::Orv::Viewer {

namespace {

/// The part of a load that is left to the upload.
constexpr double UploadBegins = 0.8;

QString invitation()
{
    return MainWindow::tr("Drop an OBJ file here, or open one with Ctrl+O.");
}

/// The first file of a drop; null where there is none.
QString fileOf(const QMimeData &data)
{
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            return url.toLocalFile();
    }
    return {};
}

QString factsOf(const ModelDetails &details)
{
    const QLocale locale;
    const auto counted = [&locale](quint64 count, const QString &one, const QString &many) {
        return locale.toString(count) + QLatin1Char(' ') + (count == 1 ? one : many);
    };
    const QString text =
        counted(details.report.triangles, MainWindow::tr("triangle"), MainWindow::tr("triangles")) +
        QStringLiteral(", ") +
        counted(details.report.vertices, MainWindow::tr("vertex"), MainWindow::tr("vertices")) +
        QStringLiteral(", ") +
        counted(quint64(details.materials.size()), MainWindow::tr("material"),
                MainWindow::tr("materials"));
    const quint64 lost = details.report.faces - details.report.facesDrawn;
    return lost == 0
               ? text
               : MainWindow::tr("%1; %2 not drawn")
                     .arg(text, counted(lost, MainWindow::tr("face"), MainWindow::tr("faces")));
}

} // namespace

MainWindow::MainWindow(QSettings &settings)
    : _settings(settings), _recent(new RecentFiles(settings, this)),
      _actions(std::make_unique<WindowActions>(*this, *_recent)), _viewport(new Viewport(this)),
      _notice(new Notice(_viewport)), _loading(new LoadingBar), _facts(new QLabel),
      _loader(new ModelLoader(this)), _watch(new FileWatch(this))
{
    // For whoever queues or records the signal.
    qRegisterMetaType<std::shared_ptr<const ModelDetails>>(
        "std::shared_ptr<const Halvard::Orv::Viewer::ModelDetails>");
    setAcceptDrops(true);
    setCentralWidget(_viewport);
    makeStatusBar();
    connectActions();
    connectCameraActions();
    connectPictureActions();
    connectHelpActions();
    connectLoading();
    connectViewport();
    addPanels(*this);
    applyColours();
    restore();
    setWindowTitle(tr("Model Viewer"));
    _notice->say(invitation());
    _viewport->setFocus();
}

MainWindow::~MainWindow() = default;

void MainWindow::makeStatusBar()
{
    statusBar()->addPermanentWidget(_facts);
    statusBar()->addPermanentWidget(_loading);
    connect(_loading, &LoadingBar::cancelled, this, &MainWindow::cancelLoading);
}

void MainWindow::connectActions()
{
    const WindowActions &a = *_actions;
    connect(a.open, &QAction::triggered, this, &MainWindow::chooseFile);
    connect(a.reload, &QAction::triggered, this, &MainWindow::reload);
    connect(a.quit, &QAction::triggered, this, &MainWindow::close);
    connect(_recent, &RecentFiles::chosen, this, &MainWindow::open);
    for (const auto &[shading, action] : a.shadings)
        connect(action, &QAction::triggered, this,
                [this, mode = shading] { _viewport->setShading(mode); });
    connect(a.wireframe, &QAction::toggled, _viewport, &Viewport::setWireframe);
    connect(a.grid, &QAction::toggled, _viewport, &Viewport::setGrid);
    connect(a.grid, &QAction::toggled, this, &MainWindow::tellFacts);
    connect(a.axes, &QAction::toggled, _viewport, &Viewport::setAxes);
    connect(a.fullScreen, &QAction::toggled, this, &MainWindow::setFullScreen);
}

void MainWindow::connectCameraActions()
{
    const WindowActions &a = *_actions;
    connect(a.frame, &QAction::triggered, _viewport, [this] { _viewport->frameModel(); });
    connect(a.front, &QAction::triggered, _viewport, [this] { _viewport->frameModel(0, 0); });
    connect(a.side, &QAction::triggered, _viewport, [this] { _viewport->frameModel(90, 0); });
    connect(a.top, &QAction::triggered, _viewport, [this] { _viewport->frameModel(0, 90); });
    connect(a.upY, &QAction::triggered, _viewport,
            [this] { _viewport->setUpAxis(Render::UpAxis::Y); });
    connect(a.upZ, &QAction::triggered, _viewport,
            [this] { _viewport->setUpAxis(Render::UpAxis::Z); });
}

void MainWindow::connectHelpActions()
{
    const WindowActions &a = *_actions;
    connect(a.shortcuts, &QAction::triggered, this, [this] {
        auto *const sheet = new ShortcutsSheet(*_actions, this);
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        sheet->show();
    });
    connect(a.about, &QAction::triggered, this, [this] {
        QMessageBox::about(this, tr("About"),
                           tr("orv-view %1\n\nShows Wavefront OBJ models, and what is wrong with "
                              "them.")
                               .arg(ModelVersions::getVersion()));
    });
}

void MainWindow::connectLoading()
{
    connect(_loader, &ModelLoader::progressed, this, [this](const QString &what, double fraction) {
        tellProgress(what, fraction * UploadBegins);
    });
    connect(_loader, &ModelLoader::loaded, this, &MainWindow::takeLoaded);
    connect(_loader, &ModelLoader::failed, this, &MainWindow::fail);
    connect(_loader, &ModelLoader::cancelled, this, [this] {
        endLoading();
        emit loadCancelled();
    });
    connect(_watch, &FileWatch::changed, this, [this] {
        if (!_loader->isLoading() && !_viewport->isUploading())
            load(_viewport->details() ? _shownPath : _path, true);
        else
            _watch->tryAgain();
    });
}

void MainWindow::connectViewport()
{
    connect(_viewport, &Viewport::uploadProgressed, this, [this](double fraction) {
        tellProgress(tr("Uploading"), UploadBegins + fraction * (1 - UploadBegins));
    });
    connect(_viewport, &Viewport::modelShown, this, &MainWindow::showModel);
    connect(_viewport, &Viewport::uploadFailed, this, &MainWindow::fail);
    connect(_viewport, &Viewport::cameraMoved, _notice, &Notice::dismiss);
    connect(_viewport, &Viewport::unusable, this, [this](const QString &sentence) {
        _isUnusable = true;
        _notice->say(sentence);
    });
    connect(_viewport, &Viewport::contextLost, this, [this] {
        _isUnusable = true;
        _notice->say(tr("The graphics driver was reset, and the picture is lost. Press F5 to load "
                        "the model again."));
    });
    connect(_viewport, &Viewport::contextRenewed, this, &MainWindow::reload);
}

void MainWindow::open(const QString &path)
{
    _triesLeft = 0;
    load(QFileInfo(path).absoluteFilePath(), false);
}

void MainWindow::reload()
{
    if (_isUnusable)
        renewContext();
    else if (!_path.isEmpty())
        load(_path, false);
}

/// Another context comes with another place in the tree of widgets, also back to the old one.
void MainWindow::renewContext()
{
    _isUnusable = false;
    _notice->say(QString());
    setCentralWidget(takeCentralWidget());
    _viewport->show();
}

void MainWindow::load(const QString &path, bool isAutomatic)
{
    _viewport->cancelUpload();
    _path = path;
    _isAutomatic = isAutomatic;
    tellProgress(tr("Opening"), 0);
    if (!_isUnusable)
        _notice->say(_viewport->details() ? QString() : tr("Loading ..."));
    _loader->load(_path, _viewport->mostTexturePixelsOnASide());
}

void MainWindow::takeLoaded(const std::shared_ptr<LoadedFile> &file)
{
    const ModelDetails &details = *file->details;
    const std::shared_ptr<const ModelDetails> shown = _viewport->details();
    if (_isAutomatic && shown && stampOf(_path) != details.stamps.value(_path))
        keepLastVersion(tr("it is being written"));
    else if (_isAutomatic && shown && shown->report.triangles > 0 && details.report.triangles == 0)
        keepLastVersion(tr("there is nothing to draw in it"));
    else
        _viewport->showModel(file, _path == _shownPath);
}

/// A save that was caught half-way, or a mistake that its author is about to mend.
void MainWindow::keepLastVersion(const QString &reason)
{
    endLoading();
    const QString sentence = tr("The file has changed, but %1. The last version is shown until it "
                                "can be read.")
                                 .arg(reason);
    statusBar()->showMessage(sentence);
    if (_triesLeft > 0) {
        --_triesLeft;
        _watch->tryAgain();
    }
    emit loadFailed(sentence);
}

void MainWindow::cancelLoading()
{
    _loader->cancel(); // which says when it has ended
    if (_viewport->isUploading()) {
        _viewport->cancelUpload();
        endLoading();
        emit loadCancelled();
    }
}

void MainWindow::tellProgress(const QString &what, double fraction)
{
    _facts->hide();
    _loading->tell(what, fraction);
}

void MainWindow::endLoading()
{
    _loading->hide();
    _facts->show();
    if (!_isUnusable)
        _notice->say(_viewport->details() ? QString() : invitation());
}

void MainWindow::showModel()
{
    constexpr int TriesAfterAChange = 5;
    endLoading();
    statusBar()->clearMessage();
    const std::shared_ptr<const ModelDetails> details = _viewport->details();
    if (details->path != _shownPath) {
        const Render::Shading now = _viewport->options().shading;
        if (now == Render::Shading::Material || now == Render::Shading::Flat)
            setShading(Render::shadingFor(details->report));
        _recent->add(details->path);
    }
    _shownPath = details->path;
    _triesLeft = TriesAfterAChange;
    _watch->watch(details->path, details->stamps);
    tellFacts();
    setWindowTitle(tr("%1 - Model Viewer").arg(QFileInfo(details->path).fileName()));
    setWindowFilePath(details->path);
    if (details->report.triangles == 0)
        _notice->say(tr("There is nothing to draw in '%1'.").arg(details->path));
    emit modelShown(details);
}

void MainWindow::tellFacts()
{
    const std::shared_ptr<const ModelDetails> details = _viewport->details();
    QString text = details ? factsOf(*details) : QString();
    if (details && _actions->grid->isChecked() && !details->bounds.isEmpty())
        text += tr("; grid %1").arg(QLocale().toString(Render::gridSpacing(details->bounds)));
    _facts->setText(text);
}

void MainWindow::fail(const QString &sentence)
{
    if (_isAutomatic && _viewport->details()) {
        const QString reason = sentence.endsWith(QLatin1Char('.')) ? sentence.chopped(1) : sentence;
        return keepLastVersion(reason);
    }
    endLoading();
    if (_viewport->details()) {
        _notice->say(sentence, Notice::Kind::Goes); // what is shown is watched as before
    } else {
        _notice->say(sentence);
        _watch->watch(_path, stampsOf({_path}));
    }
    emit loadFailed(sentence);
}

void MainWindow::chooseFile()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Open a Model"), wantedPath(),
                                     tr("Wavefront OBJ models (*.obj *.OBJ);;All files (*)"));
    if (!path.isEmpty())
        open(path);
}

/// The folder that a file dialog begins in.
QString MainWindow::wantedPath() const
{
    if (!_path.isEmpty())
        return QFileInfo(_path).path();
    return _recent->paths().isEmpty() ? QDir::currentPath()
                                      : QFileInfo(_recent->paths().first()).path();
}

void MainWindow::setShading(Render::Shading shading)
{
    _actions->shadings.at(shading)->setChecked(true);
    _viewport->setShading(shading);
}

void MainWindow::setFullScreen(bool isOn)
{
    menuBar()->setVisible(!isOn);
    statusBar()->setVisible(!isOn);
    for (QToolBar *bar : findChildren<QToolBar *>())
        bar->setVisible(!isOn);
    setWindowState(windowState().setFlag(Qt::WindowFullScreen, isOn));
}

QDockWidget *MainWindow::addPanel(QWidget *panel, const QString &title, const QString &name,
                                  Qt::DockWidgetArea area)
{
    auto *const dock = new QDockWidget(title, this);
    dock->setObjectName(name);
    dock->setWidget(panel);
    addDockWidget(area, dock);
    _actions->panels->addAction(dock->toggleViewAction());
    // The layout that is remembered knows it by its name.
    restoreDockWidget(dock);
    return dock;
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!fileOf(*event->mimeData()).isNull())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    open(fileOf(*event->mimeData()));
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape)
        return QMainWindow::keyPressEvent(event);
    if (_loader->isLoading() || _viewport->isUploading())
        cancelLoading();
    else if (_actions->fullScreen->isChecked())
        _actions->fullScreen->setChecked(false);
}

void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        applyColours();
    QMainWindow::changeEvent(event);
}

/// The background follows the desktop: light or dark.
void MainWindow::applyColours()
{
    const Render::RenderOptions light;
    if (palette().color(QPalette::Window).lightnessF() > 0.5)
        _viewport->setBackground(light.backgroundTop, light.backgroundBottom);
    else
        _viewport->setBackground(QColor(0x3c, 0x42, 0x4a), QColor(0x1c, 0x1f, 0x24));
}

void MainWindow::restore()
{
    const WindowActions &a = *_actions;
    setShading(Render::Shading::Material);
    a.grid->setChecked(_settings.value(QStringLiteral("grid"), true).toBool());
    a.axes->setChecked(_settings.value(QStringLiteral("axes"), true).toBool());
    _viewport->setGrid(a.grid->isChecked());
    _viewport->setAxes(a.axes->isChecked());
    const bool isZUp = _settings.value(QStringLiteral("up")).toString() == QLatin1String("z");
    (isZUp ? a.upZ : a.upY)->setChecked(true);
    _viewport->setUpAxis(isZUp ? Render::UpAxis::Z : Render::UpAxis::Y);
    resize(1180, 760);
    restoreGeometry(_settings.value(QStringLiteral("geometry")).toByteArray());
    restoreState(_settings.value(QStringLiteral("state")).toByteArray());
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    _actions->fullScreen->setChecked(false); // which the geometry should not remember
    _settings.setValue(QStringLiteral("grid"), _actions->grid->isChecked());
    _settings.setValue(QStringLiteral("axes"), _actions->axes->isChecked());
    _settings.setValue(QStringLiteral("up"),
                       _actions->upZ->isChecked() ? QStringLiteral("z") : QStringLiteral("y"));
    _settings.setValue(QStringLiteral("geometry"), saveGeometry());
    _settings.setValue(QStringLiteral("state"), saveState());
    _loader->cancel();
    QMainWindow::closeEvent(event);
}

} // namespace Halvard::Orv::Viewer
