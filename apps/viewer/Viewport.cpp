// Before Qt's OpenGL headers.
#include <OrvGL/OpenGLFunctions.h>

#include "Viewport.h"

#include "SceneUpload.h"

#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/Texture.h>
#include <OrvModel/TexturePreparing.h>
#include <render/Picture.h>

#include <QtCore/QEvent>
#include <QtGui/QImage>
#include <QtGui/QOpenGLContext>

#include <iterator>

namespace Halvard::Orv::Viewer {

namespace {

QString advice()
{
    return Viewport::tr("Update the graphics driver, or start orv-view with "
                        "LIBGL_ALWAYS_SOFTWARE=1 in its environment, which draws without a "
                        "graphics card.");
}

/// Sides that are powers of two, and others, are two things to drivers.
constexpr QSize FirstMipmaps[] = {{32, 32}, {48, 48}, {32, 48}, {48, 32}};

} // namespace

Viewport::Viewport(QWidget *parent) : QOpenGLWidget(parent), _navigation(_camera)
{
    setFormat(format());
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(160, 120);
    _options.grid = _options.axes = true;
    // Of no length: after the events that wait.
    connect(&_uploadTimer, &QTimer::timeout, this, &Viewport::stepUpload);
    connect(&_mipmapTimer, &QTimer::timeout, this, &Viewport::makeFirstMipmaps);
}

Viewport::~Viewport()
{
    if (context())
        disconnect(context(), nullptr, this, nullptr);
    dropOpenGL();
}

QSurfaceFormat Viewport::format()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(4, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    format.setSamples(4);
    format.setOption(QSurfaceFormat::ResetNotification);
    return format;
}

void Viewport::initializeGL()
{
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &Viewport::dropOpenGL);
    _isLost = false;
    QString error;
    _renderer = Render::Renderer::create(&error);
    if (!_renderer) {
        emit unusable(tr("%1 %2").arg(error, advice()));
        return;
    }
    GLint side = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
    _mostTexturePixelsOnASide = side;
    _mipmapsMade = 0;
    _mipmapTimer.start(0);
    if (_hadContext)
        emit contextRenewed();
    _hadContext = true;
    if (_waiting)
        _uploadTimer.start(0);
}

/// Drivers make what they compute mipmaps with when a texture asks for it. Without a graphics card
/// that takes a tenth of a second, in which no event is handled, and so it is done one by one before
/// a model needs all of it at once.
void Viewport::makeFirstMipmaps()
{
    if (_renderer && _mipmapsMade < std::size(FirstMipmaps)) {
        makeCurrent();
        PreparedTexture texture;
        texture.image = QImage(FirstMipmaps[_mipmapsMade++], QImage::Format_ARGB32);
        texture.image.fill(Qt::white);
        makeTexture(texture); // and gone again
    } else {
        _mipmapTimer.stop();
    }
}

void Viewport::dropOpenGL()
{
    if (!_renderer && !_upload && !_model)
        return;
    makeCurrent();
    cancelUpload();
    _camera.setGeometry(nullptr);
    _renderer.reset();
    _model.reset();
    _details.reset();
    doneCurrent();
}

void Viewport::resizeGL(int, int)
{
    _camera.setViewSize(size());
}

void Viewport::paintGL()
{
    if (_renderer && !isLost())
        _renderer->draw(_camera.camera(), _options);
}

/// Asked for each frame: a driver that was reset draws nothing, and says nothing by itself.
bool Viewport::isLost()
{
    if (_isLost)
        return true;
    const bool canTell = epoxy_gl_version() >= 45 || epoxy_has_gl_extension("GL_KHR_robustness");
    _isLost = canTell && glGetGraphicsResetStatus() != GL_NO_ERROR;
    if (_isLost)
        emit contextLost();
    return _isLost;
}

void Viewport::showEvent(QShowEvent *event)
{
    QOpenGLWidget::showEvent(event);
    // The context is made with the window.
    QTimer::singleShot(0, this, [this] {
        if (isVisible() && !isValid())
            emit unusable(tr("OpenGL 4.3 cannot be used here. %1").arg(advice()));
    });
}

bool Viewport::event(QEvent *event)
{
    // QOpenGLWidget forgets the number of samples with its first context.
    if (event->type() == QEvent::Show && !isValid())
        setFormat(format());
    if (_renderer && _navigation.handle(event)) {
        event->accept();
        moved();
        return true;
    }
    return QOpenGLWidget::event(event);
}

void Viewport::moved()
{
    update();
    emit cameraMoved();
}

void Viewport::showModel(const std::shared_ptr<LoadedFile> &file, bool keepsCamera)
{
    cancelUpload();
    _waiting = file;
    _keepsCamera = keepsCamera;
    if (_renderer)
        _uploadTimer.start(0);
}

void Viewport::cancelUpload()
{
    _uploadTimer.stop();
    _waiting.reset();
    if (!_upload)
        return;
    makeCurrent();
    _upload.reset();
}

void Viewport::stepUpload()
{
    if (!isValid())
        return;
    makeCurrent();
    if (_waiting)
        _upload = std::make_unique<SceneUpload>(std::exchange(_waiting, nullptr));
    if (_upload->step())
        emit uploadProgressed(_upload->fraction());
    else
        finishUpload();
}

void Viewport::finishUpload()
{
    _uploadTimer.stop();
    const std::unique_ptr<SceneUpload> upload = std::move(_upload);
    std::unique_ptr<GPUModel> model = upload->takeModel();
    if (!model) {
        emit uploadFailed(tr("There is no room for '%1' on the graphics card. Close other programs "
                             "that draw, and open it again.")
                              .arg(upload->file().details->path));
        return;
    }
    LoadedFile &file = upload->file();
    _renderer->setModel(model.get(), std::move(file.geometry), std::move(file.textures));
    _model = std::move(model); // the last one goes
    _details = file.details;
    _camera.setGeometry(&_renderer->geometry());
    if (!_keepsCamera) {
        const Render::ViewAngles usual;
        _camera.frame(usual.azimuth, usual.elevation);
    }
    _options.marked.clear();
    _options.highlighted = QString();
    emit modelShown();
    moved();
}

void Viewport::frameModel()
{
    _camera.frame();
    moved();
}

void Viewport::frameModel(double azimuth, double elevation)
{
    _camera.frame(azimuth, elevation);
    moved();
}

void Viewport::setUpAxis(Render::UpAxis up)
{
    _options.up = up;
    _camera.setUpAxis(up);
    moved();
}

void Viewport::flyTo(const std::vector<QVector3D> &corners)
{
    _camera.flyTo(corners);
    moved();
}

void Viewport::setShading(Render::Shading shading)
{
    _options.shading = shading;
    update();
}

void Viewport::setWireframe(bool isOn)
{
    _options.wireframe = isOn;
    update();
}

void Viewport::setGrid(bool isOn)
{
    _options.grid = isOn;
    update();
}

void Viewport::setAxes(bool isOn)
{
    _options.axes = isOn;
    update();
}

void Viewport::setBackground(const QColor &top, const QColor &bottom)
{
    _options.backgroundTop = top;
    _options.backgroundBottom = bottom;
    update();
}

void Viewport::mark(const std::vector<QVector3D> &corners)
{
    if (_options.marked == corners)
        return; // a frame of a large model takes its time
    _options.marked = corners;
    update();
}

void Viewport::highlightMaterial(const QString &name)
{
    if (_options.highlighted == name && _options.highlighted.isNull() == name.isNull())
        return;
    _options.highlighted = name;
    update();
}

QImage Viewport::picture(const QSize &size, const Render::RenderOptions &options, QString &error)
{
    if (!_renderer || _isLost) {
        error = tr("There is no picture: OpenGL cannot be used.");
        return {};
    }
    makeCurrent();
    Render::PictureError failure;
    const QImage image =
        Render::renderPicture(*_renderer, size, _camera.camera(size), options, failure);
    doneCurrent();
    if (image.isNull())
        error = failure.text;
    return image;
}

} // namespace Halvard::Orv::Viewer
