/// \file
/// A widget that shows a turning model, and goes on turning it while the next one loads.
#pragma once

#include <OrvGL/OpenGLFunctions.h> // before what Qt has of OpenGL

#include "FrameTimes.h"
#include "Loading.h"
#include "Scene.h"

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QOpenGLWidget>

#include <functional>
#include <memory>

class ModelView : public QOpenGLWidget
{
public:
    ModelView();
    ~ModelView() override;

    /// Loads a model in the background; a load that still runs is given up.
    void load(const QString &fileName);

    /// \name What happens to a load
    /// Called between frames, on the thread of the widgets.
    /// @{
    std::function<void(double fraction)> onProgress;
    std::function<void()> onShown; ///< The model has taken the place of the one before.
    std::function<void(const QString &error)> onFailure;
    /// @}

    FrameTimes frameTimes;

protected:
    void initializeGL() override;
    void paintGL() override;

private:
    void continueLoading();
    void startUpload();
    void continueUpload();

    std::unique_ptr<Loading> _loading; // while a model is prepared
    std::unique_ptr<Scene> _next;      // while it is uploaded
    std::unique_ptr<Scene> _shown;
    unsigned _program = 0;
    QElapsedTimer _clock;
};
