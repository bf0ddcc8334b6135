/// \file
/// The picture of the model in a window.
#pragma once

#include "CameraControl.h"
#include "LoadedFile.h"
#include "Navigation.h"

#include <render/Renderer.h>

#include <QtCore/QTimer>
#include <QtWidgets/QOpenGLWidget>

#include <memory>
#include <vector>

namespace Halvard::Orv {
class GPUModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Viewer {

class SceneUpload;

/// Shows one model, and brings the next one to the GPU between frames: what was shown stays until
/// the new model is whole.
class Viewport : public QOpenGLWidget
{
    Q_OBJECT

public:
    explicit Viewport(QWidget *parent = nullptr);
    ~Viewport() override;

    /// What is needed of OpenGL.
    static QSurfaceFormat format();

    /// \name The model
    /// @{

    /// Begins to upload a model. Ends with modelShown() or uploadFailed(), unless it is cancelled
    /// or another one begins.
    /// \param keepsCamera otherwise the model is framed from the usual side.
    void showModel(const std::shared_ptr<LoadedFile> &file, bool keepsCamera);
    void cancelUpload();
    bool isUploading() const { return _upload || _waiting; }
    /// Of the model that is shown; null for none.
    std::shared_ptr<const ModelDetails> details() const { return _details; }
    /// OpenGL's limit; a usual one before OpenGL has been asked.
    int mostTexturePixelsOnASide() const { return _mostTexturePixelsOnASide; }
    /// @}

    /// \name The camera
    /// @{
    const CameraControl &camera() const { return _camera; }
    void frameModel();
    void frameModel(double azimuth, double elevation);
    void setUpAxis(Render::UpAxis up);
    /// Brings some points, the corners of a face for example, into the middle.
    void flyTo(const std::vector<QVector3D> &corners);
    /// @}

    /// \name What is drawn
    /// @{
    const Render::RenderOptions &options() const { return _options; }
    void setShading(Render::Shading shading);
    void setWireframe(bool isOn);
    void setGrid(bool isOn);
    void setAxes(bool isOn);
    void setBackground(const QColor &top, const QColor &bottom);
    /// Marks a face by its edges and corners, whether it gives triangles or not; no corners take
    /// the mark away. It goes with the model.
    void mark(const std::vector<QVector3D> &corners);
    /// Has a material stand out from the others; a null name ends that. Goes with the model.
    void highlightMaterial(const QString &name);
    /// @}

    /// Draws what is seen, or something else, from this camera at any size.
    /// \param error receives a sentence when the result is null.
    QImage picture(const QSize &size, const Render::RenderOptions &options, QString &error);

signals:
    void uploadProgressed(double fraction);
    void modelShown();
    void uploadFailed(const QString &sentence);
    /// OpenGL cannot be used. \param sentence says what to do.
    void unusable(const QString &sentence);
    /// The graphics driver was reset, and everything that it held is gone.
    void contextLost();
    /// The model went with the context; there is a new one, to load it again.
    void contextRenewed();
    void cameraMoved();

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    bool isLost();
    void makeFirstMipmaps();
    void stepUpload();
    void finishUpload();
    void dropOpenGL();
    void moved();

    CameraControl _camera;
    Navigation _navigation;
    Render::RenderOptions _options;
    int _mostTexturePixelsOnASide = 16384;

    std::unique_ptr<Render::Renderer> _renderer;
    std::unique_ptr<GPUModel> _model;
    std::shared_ptr<const ModelDetails> _details;

    std::shared_ptr<LoadedFile> _waiting; // for the first frame
    std::unique_ptr<SceneUpload> _upload;
    bool _keepsCamera = false;
    QTimer _uploadTimer;
    QTimer _mipmapTimer;
    size_t _mipmapsMade = 0;
    bool _hadContext = false;
    bool _isLost = false;
};

} // namespace Halvard::Orv::Viewer
