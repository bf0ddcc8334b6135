/// \file
/// Reads model files on a thread of its own.
#pragma once

#include "LoadedFile.h"
#include "Worker.h"

#include <QtCore/QObject>

#include <atomic>
#include <memory>

namespace Halvard::Orv::Viewer {

/// One load at a time: the next one ends that before it. Every load ends with one of loaded(),
/// failed() and cancelled(), unless another begins before. Signals come on the thread that the
/// loader lives on.
class ModelLoader : public QObject
{
    Q_OBJECT

public:
    explicit ModelLoader(QObject *parent = nullptr);
    /// Waits for the worker, which stops soon.
    ~ModelLoader() override;

    /// \param mostTexturePixelsOnASide OpenGL's limit.
    void load(const QString &path, int mostTexturePixelsOnASide);
    void cancel();
    bool isLoading() const { return _stop != nullptr; }

signals:
    /// \param fraction of reading, preparing and decoding; never falls within a load.
    void progressed(const QString &what, double fraction);
    void loaded(const std::shared_ptr<Halvard::Orv::Viewer::LoadedFile> &file);
    /// \param sentence says what is wrong with the file.
    void failed(const QString &sentence);
    void cancelled();

private:
    class Job;
    using Stop = std::shared_ptr<std::atomic<bool>>;

    /// Does something here, on the loader's thread, if the load is still the last one.
    template <typename Action>
    void post(const Stop &load, Action action);
    void finish();

    Worker _worker;
    Stop _stop; // of the load that runs; null when none does
};

} // namespace Halvard::Orv::Viewer
