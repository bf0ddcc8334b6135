#include "MainWindow.h"

#include "LoadingBar.h"
#include "ModelLoader.h"
#include "Notice.h"
#include "RecentFiles.h"
#include "Viewport.h"
#include "WindowActions.h"
#include "panels/Panels.h"

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
    const QString text = MainWindow::tr("%1 triangles, %2 vertices, %3 materials")
                             .arg(locale.toString(qulonglong(details.report.triangles)),
                                  locale.toString(qulonglong(details.report.vertices)),
                                  locale.toString(qulonglong(details.materials.size())));
    const quint64 lost = details.report.faces - details.report.facesDrawn;
    return lost == 0 ? text
                     : MainWindow::tr("%1; %2 faces are not drawn")
                           .arg(text, locale.toString(qulonglong(lost)));
}

} // namespace

MainWindow::MainWindow(QSettings &settings)
    : _settings(settings), _recent(new RecentFiles(settings, this)),
      _actions(std::make_unique<WindowActions>(*this, *_recent)), _viewport(new Viewport(this)),
      _notice(new Notice(_viewport)), _loading(new LoadingBar), _facts(new QLabel),
      _loader(new ModelLoader(this))
{
    setAcceptDrops(true);
    setCentralWidget(_viewport);
    makeStatusBar();
    connectActions();
    connectCameraActions();
    connectLoading();
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

void MainWindow::connectLoading()
{
    connect(_loader, &ModelLoader::progressed, this, [this](const QString &what, double fraction) {
        tellProgress(what, fraction * UploadBegins);
    });
    connect(_loader, &ModelLoader::loaded, this, [this](const std::shared_ptr<LoadedFile> &file) {
        _viewport->show(file, _keepsCamera);
    });
    connect(_loader, &ModelLoader::failed, this, &MainWindow::fail);
    connect(_loader, &ModelLoader::cancelled, this, [this] {
        endLoading();
        emit loadCancelled();
    });
    connect(_viewport, &Viewport::uploadProgressed, this, [this](double fraction) {
        tellProgress(tr("Uploading"), UploadBegins + fraction * (1 - UploadBegins));
    });
    connect(_viewport, &Viewport::modelShown, this, &MainWindow::showModel);
    connect(_viewport, &Viewport::uploadFailed, this, &MainWindow::fail);
    connect(_viewport, &Viewport::contextRenewed, this, &MainWindow::reload);
    connect(_viewport, &Viewport::unusable, this, [this](const QString &sentence) {
        _isUnusable = true;
        _notice->say(sentence);
    });
}

void MainWindow::open(const QString &path)
{
    load(path, false);
}

void MainWindow::reload()
{
    if (!_path.isEmpty())
        load(_path, _viewport->details() || _keepsCamera);
}

void MainWindow::load(const QString &path, bool keepsCamera)
{
    _viewport->cancelUpload();
    _path = QFileInfo(path).absoluteFilePath();
    _keepsCamera = keepsCamera;
    tellProgress(tr("Opening"), 0);
    if (!_isUnusable)
        _notice->say(_viewport->details() ? QString() : tr("Loading ..."));
    _loader->load(_path, _viewport->mostTexturePixelsOnASide());
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
    endLoading();
    const std::shared_ptr<const ModelDetails> details = _viewport->details();
    if (!_keepsCamera) {
        const Render::Shading now = _viewport->options().shading;
        if (now == Render::Shading::Material || now == Render::Shading::Flat)
            setShading(Render::shadingFor(details->report));
        _recent->add(details->path);
    }
    _facts->setText(factsOf(*details));
    setWindowTitle(tr("%1 - Model Viewer").arg(QFileInfo(details->path).fileName()));
    setWindowFilePath(details->path);
    if (details->report.triangles == 0)
        _notice->say(tr("There is nothing to draw in '%1'.").arg(details->path));
    emit modelShown(details);
}

void MainWindow::fail(const QString &sentence)
{
    endLoading();
    _notice->say(sentence);
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
