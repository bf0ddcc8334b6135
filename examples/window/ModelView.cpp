#include "ModelView.h"

#include <OrvGL/OpenGLDeviceContext.h>

#include <QtGui/QMatrix4x4>

#include <cmath>

using namespace Halvard::Orv;

ModelView::ModelView()
{
    // A frame is followed by the next one, as fast as the display takes them.
    connect(this, &QOpenGLWidget::frameSwapped, this, QOverload<>::of(&ModelView::update));
    _clock.start();
}

ModelView::~ModelView()
{
    makeCurrent(); // scenes own OpenGL objects
    _next.reset();
    _shown.reset();
    glDeleteProgram(_program);
    doneCurrent();
}

void ModelView::load(const QString &fileName)
{
    makeCurrent();
    _next.reset();
    doneCurrent();
    _loading = std::make_unique<Loading>(fileName);
}

void ModelView::initializeGL()
{
    const auto context = OpenGLDeviceContext::current();
    if (!context || context->version() < 43)
        qFatal("This program needs OpenGL 4.3 or later.");
    _program = makeSceneProgram();
}

void ModelView::paintGL()
{
    frameTimes.beginFrame();
    continueLoading();

    glEnable(GL_DEPTH_TEST);
    glClearColor(0.1f, 0.12f, 0.15f, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (!_shown)
        return;
    const float distance = 1 / std::sin(0.35f); // 20 degrees, half of the opening
    QMatrix4x4 projection;
    projection.perspective(40, float(width()) / float(height()), distance - 1, distance + 1);
    QMatrix4x4 view;
    view.lookAt(distance * QVector3D(0, 0.4f, 1).normalized(), {0, 0, 0}, {0, 1, 0});
    view.rotate(float(_clock.elapsed()) * 0.03f, 0, 1, 0); // 30 degrees a second
    _shown->draw(_program, view, projection);
}

// A little in each frame. The context is current, and nothing of the frame is drawn yet.
void ModelView::continueLoading()
{
    if (_next) {
        continueUpload();
    } else if (_loading) {
        frameTimes.setPhase(Phase::Preparing);
        onProgress(_loading->fraction());
        if (_loading->isReady())
            startUpload();
    }
}

void ModelView::startUpload()
{
    LoadedModel loaded = _loading->take();
    _loading.reset();
    if (loaded.model)
        _next = std::make_unique<Scene>(std::move(loaded));
    else
        onFailure(loaded.error);
}

void ModelView::continueUpload()
{
    frameTimes.setPhase(Phase::Uploading);
    QElapsedTimer time;
    time.start();
    const bool isMoreToCome = _next->uploadNext();
    glFinish(); // only to know how long it takes; the driver may work on it later otherwise
    frameTimes.addUpload(double(time.nsecsElapsed()) / 1e6);
    if (isMoreToCome)
        return;
    const bool isComplete = _next->isComplete();
    if (isComplete) {
        frameTimes.setPhase(Phase::FirstDraw);
        _shown = std::move(_next);
        onShown();
    } else {
        _next.reset();
        onFailure("OpenGL has no room for the model.");
    }
}
