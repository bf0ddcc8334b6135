// The actions of the window that make pictures.
#include "MainWindow.h"

#include "Notice.h"
#include "PictureDialog.h"
#include "PictureFile.h"
#include "RenderCommandLine.h"
#include "Viewport.h"
#include "WindowActions.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QAction>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QStatusBar>

namespace Halvard::Orv::Viewer {

void MainWindow::connectPictureActions()
{
    const WindowActions &a = *_actions;
    connect(a.savePicture, &QAction::triggered, this, &MainWindow::choosePicture);
    connect(a.copyPicture, &QAction::triggered, this, &MainWindow::copyPicture);
    connect(a.copyCommand, &QAction::triggered, this, &MainWindow::copyCommand);
}

QSize MainWindow::pictureSize() const
{
    return _viewport->size() * _viewport->devicePixelRatioF();
}

void MainWindow::choosePicture()
{
    const Render::RenderOptions &seen = _viewport->options();
    PictureDialog dialog(pictureSize(), seen.grid, seen.axes, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString name = _shownPath.isEmpty()
                             ? QStringLiteral("picture.png")
                             : QFileInfo(_shownPath).completeBaseName() + QStringLiteral(".png");
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Save Picture"), QDir(wantedPath()).filePath(name),
                                     tr("Images (*.png *.jpg *.bmp *.ppm);;All files (*)"));
    if (path.isEmpty())
        return;
    Render::RenderOptions options = seen;
    options.grid = dialog.hasGrid();
    options.axes = dialog.hasAxes();
    if (dialog.isTransparent())
        options.backgroundTop = options.backgroundBottom = QColor(0, 0, 0, 0);
    savePicture(path, dialog.size(), options);
}

bool MainWindow::savePicture(const QString &path, const QSize &size,
                             const Render::RenderOptions &options)
{
    QString error;
    const QImage picture = _viewport->picture(size, options, error);
    if (!picture.isNull())
        error = writePicture(picture, path);
    if (error.isEmpty())
        statusBar()->showMessage(tr("Saved '%1'.").arg(path), 8000);
    else
        _notice->say(error, Notice::Kind::Goes);
    return error.isEmpty();
}

void MainWindow::copyPicture()
{
    QString error;
    const QImage picture = _viewport->picture(pictureSize(), _viewport->options(), error);
    if (picture.isNull())
        return _notice->say(error, Notice::Kind::Goes);
    QGuiApplication::clipboard()->setImage(picture);
    statusBar()->showMessage(tr("The picture is on the clipboard."), 8000);
}

void MainWindow::copyCommand()
{
    if (_shownPath.isEmpty())
        return _notice->say(tr("Open a model first."));
    const QString picture = QFileInfo(_shownPath).completeBaseName() + QStringLiteral(".png");
    QGuiApplication::clipboard()->setText(renderCommandLine(renderArguments(
        _shownPath, picture, pictureSize(), _viewport->camera(), _viewport->options())));
    statusBar()->showMessage(tr("The command line is on the clipboard."), 8000);
}

} // namespace Halvard::Orv::Viewer
