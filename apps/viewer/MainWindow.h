/// \file
/// The window of orv-view.
#pragma once

#include "LoadedFile.h"

#include <render/Shading.h>

#include <QtCore/QSettings>
#include <QtWidgets/QMainWindow>

#include <memory>

class QDockWidget;
class QLabel;

namespace Halvard::Orv::Render {
struct RenderOptions;
} // namespace Halvard::Orv::Render

namespace Halvard::Orv::Viewer {

class FileWatch;
class LoadingBar;
class ModelLoader;
class Notice;
class RecentFiles;
class Viewport;
struct WindowActions;

/// Brings together what shows a model, what loads it and what tells about it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// \param settings what the window remembers; outlives it.
    explicit MainWindow(QSettings &settings);
    ~MainWindow() override;

    /// Begins to load a model. What is shown stays until it is there.
    void open(const QString &path);
    /// The same model again, from the same camera.
    void reload();
    /// Ends a load; what is shown stays.
    void cancelLoading();

    /// Draws what is seen, at another size and with other options, into a file. Says where it is, or
    /// why not. \return whether it is there.
    bool savePicture(const QString &path, const QSize &size, const Render::RenderOptions &options);
    void copyPicture();
    /// The command line that draws the picture, as a line for a shell.
    void copyCommand();

    /// \name For panels
    /// @{

    /// Adds a panel, and the action that shows and hides it.
    /// \param name of the panel in the settings.
    QDockWidget *addPanel(QWidget *panel, const QString &title, const QString &name,
                          Qt::DockWidgetArea area = Qt::RightDockWidgetArea);
    /// The file that is loaded, or was loaded last; also one that could not be.
    QString path() const { return _path; }
    Viewport &viewport() { return *_viewport; }
    WindowActions &actions() { return *_actions; }
    /// @}

signals:
    /// There is another model, or a newer version of the same; Viewport::details() is it.
    void modelShown(const std::shared_ptr<const Halvard::Orv::Viewer::ModelDetails> &details);
    /// A load ended without a model, with a sentence.
    void loadFailed(const QString &sentence);
    void loadCancelled();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void makeStatusBar();
    void connectActions();
    void connectCameraActions();
    void connectPictureActions();
    void connectHelpActions();
    void connectLoading();
    void connectViewport();
    void load(const QString &path, bool isAutomatic);
    void takeLoaded(const std::shared_ptr<LoadedFile> &file);
    void keepLastVersion(const QString &reason);
    void tellProgress(const QString &what, double fraction);
    void showModel();
    void fail(const QString &sentence);
    void endLoading();
    void chooseFile();
    void choosePicture();
    void renewContext();
    void tellFacts();
    QSize pictureSize() const;
    void setShading(Render::Shading shading);
    void setFullScreen(bool isOn);
    void applyColours();
    void restore();
    QString wantedPath() const;

    QSettings &_settings;
    RecentFiles *_recent;
    std::unique_ptr<WindowActions> _actions;
    Viewport *_viewport;
    Notice *_notice;
    LoadingBar *_loading;
    QLabel *_facts;
    ModelLoader *_loader;
    FileWatch *_watch;

    QString _path;             ///< that is loaded, or was loaded last
    QString _shownPath;        ///< of the model that is shown, or was when the context was lost
    bool _isAutomatic = false; ///< whether a changed file began the load
    int _triesLeft = 0;
    bool _isUnusable = false;
};

} // namespace Halvard::Orv::Viewer
