/// \file
/// Loading a model and its images in the background.
#pragma once

#include <OrvModel/PreparedModel.h>
#include <OrvModel/TexturePreparing.h>

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtGui/QVector3D>

#include <atomic>
#include <future>
#include <memory>

/// Everything that a model needs on the GPU, made without OpenGL.
struct LoadedModel
{
    std::unique_ptr<Halvard::Orv::PreparedModel> model;  ///< null where it could not be loaded
    QString error;                                       ///< why not
    QVector3D centre;                                    ///< of the box around what is drawn
    float radius = 0;                                    ///< of the sphere around that box
    QMap<QString, Halvard::Orv::PreparedTexture> images; ///< by the paths in the materials
};

/// A load that runs on a thread of its own while the object lives. The object belongs to the
/// thread that made it.
class Loading
{
public:
    explicit Loading(const QString &fileName);
    /// Stops the load where it still runs, within some 50 ms of work.
    ~Loading();
    Loading(const Loading &) = delete;
    Loading &operator=(const Loading &) = delete;

    double fraction() const { return _fraction; } ///< of the work, from 0 to 1
    bool isReady() const;
    LoadedModel take(); ///< Once, when it is ready; else it waits.

private:
    LoadedModel load(const QString &fileName);

    std::atomic<double> _fraction{0};
    std::atomic<bool> _isStopped{false};
    std::future<LoadedModel> _result; // the last member: it goes first, and waits for the thread
};
