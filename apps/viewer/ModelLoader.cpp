#include "ModelLoader.h"

#include <OrvModel/ModelPreparing.h>
#include <common/HelperPool.h>
#include <common/LoadFailure.h>
#include <common/ModelFiles.h>
#include <common/Verdict.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <algorithm>
#include <new>

namespace Halvard::Orv::Viewer {

namespace {

/// The parts of a load, as far as the progress bar is concerned.
constexpr double PrepareEnds = 0.8;

/// In pixels: enough for the panel of materials on a screen of high resolution. Up to 120 Qt
/// scales without threads, see TextureCache::thumbnail().
constexpr int ThumbnailSide = 96;

QString nameOf(PrepareStage stage)
{
    switch (stage) {
    case PrepareStage::Reading:
        return ModelLoader::tr("Reading");
    case PrepareStage::Welding:
        return ModelLoader::tr("Welding vertices");
    case PrepareStage::Triangulating:
        return ModelLoader::tr("Triangulating");
    case PrepareStage::Normals:
        return ModelLoader::tr("Computing normals");
    }
    return {};
}

QStringList texturePaths(const ModelDetails &details)
{
    QStringList paths;
    for (const ModelDetails::Material &material : details.materials) {
        for (const Render::TextureReference &map :
             {material.values.diffuseMap, material.values.specularMap}) {
            if (!map.path.isEmpty())
                paths += map.path;
        }
    }
    return paths;
}

std::shared_ptr<ModelDetails> detailsOf(const PreparedModel &model, const QString &path)
{
    auto details = std::make_shared<ModelDetails>();
    details->path = path;
    details->fileBytes = QFileInfo(path).size();
    details->report = model.report();
    details->normalsAreGenerated = model.normalsAreGenerated();
    const QVector<PreparedModel::Command> commands = model.commands();
    for (int i = 0; i < commands.size(); ++i)
        details->materials.push_back({commands.at(i).material, commands.at(i).indexCount / 3,
                                      Render::materialFromRecord(model.material(i)), QImage()});
    const Apps::ModelFiles files = Apps::filesOf(path);
    details->summary = Apps::summarize(model);
    details->summary.fileName = path;
    details->summary.fileBytes = qint64(details->report.bytes);
    details->libraries = files.libraries;
    details->textures = files.textures;
    return details;
}

/// Of each texture one, whose pixels materials share.
void addThumbnails(ModelDetails &details, const Render::TextureCache &textures)
{
    QMap<QString, QImage> made;
    for (ModelDetails::Material &material : details.materials) {
        const QString path = material.values.diffuseMap.path;
        if (!path.isEmpty() && !made.contains(path))
            made.insert(path, textures.thumbnail(path, ThumbnailSide));
        material.thumbnail = made.value(path);
    }
}

} // namespace

/// What the worker does for one load.
class ModelLoader::Job
{
public:
    Job(ModelLoader &loader, QString path, int mostOnASide, Stop stop)
        : _loader(loader), _path(std::move(path)), _mostOnASide(mostOnASide), _stop(std::move(stop))
    {}

    void run() const
    {
        try {
            read();
        } catch (const std::bad_alloc &) {
            fail(tr("There is not enough memory for '%1'. Close other programs and open it again.")
                     .arg(_path));
        }
    }

private:
    void read() const
    {
        auto file = std::make_shared<LoadedFile>();
        const FileStamp stamp = stampOf(_path);
        QElapsedTimer timer;
        timer.start();
        file->model = prepared();
        if (!file->model)
            return;
        const qint64 nanoseconds = timer.nsecsElapsed();
        const QString verdict = Apps::verdictOn(file->model->report(), _path);
        if (!verdict.isEmpty())
            return fail(verdict);
        const std::shared_ptr<ModelDetails> details = detailsOf(*file->model, _path);
        details->nanoseconds = details->summary.nanoseconds = nanoseconds;
        details->stamps = stampsOf(details->libraries + details->textures);
        details->stamps.insert(_path, stamp);
        file->geometry = Render::geometryOf(*file->model);
        details->bounds = file->geometry.bounds;
        file->details = details;
        if (!decodeTextures(*file))
            return cancel();
        addThumbnails(*details, *file->textures);
        _loader.post(_stop, [loader = &_loader, file] {
            const bool isStopped = *loader->_stop; // since it was posted
            loader->finish();
            if (isStopped)
                emit loader->cancelled();
            else
                emit loader->loaded(file);
        });
    }

    /// Null where the load has ended.
    std::unique_ptr<PreparedModel> prepared() const
    {
        QString reason;
        QString error;
        PrepareOptions options;
        options.reason = &reason;
        options.threadPool = &Apps::helperPool();
        options.progress = [this](const PrepareProgress &done) {
            return tell(nameOf(done.stage), done.fraction * PrepareEnds);
        };
        auto model = prepareModelFromOBJFile(_path, error, options);
        if (model)
            return model;
        if (*_stop)
            cancel();
        else
            fail(Apps::explainedFailure(error, reason));
        return nullptr;
    }

    bool decodeTextures(LoadedFile &file) const
    {
        Render::TextureSettings settings;
        settings.mostOnASide = _mostOnASide;
        file.textures = std::make_unique<Render::TextureCache>(settings);
        return file.textures->prepare(
            texturePaths(*file.details), &Apps::helperPool(), [this](double fraction) {
                return tell(tr("Decoding textures"), PrepareEnds + fraction * (1 - PrepareEnds));
            });
    }

    /// \return whether to go on.
    bool tell(const QString &what, double fraction) const
    {
        if (*_stop)
            return false;
        _loader.post(_stop, [loader = &_loader, what, fraction] {
            emit loader->progressed(what, fraction);
        });
        return true;
    }

    void fail(const QString &sentence) const
    {
        _loader.post(_stop, [loader = &_loader, sentence] {
            loader->finish();
            emit loader->failed(sentence);
        });
    }

    void cancel() const
    {
        _loader.post(_stop, [loader = &_loader] {
            loader->finish();
            emit loader->cancelled();
        });
    }

    ModelLoader &_loader;
    const QString _path;
    const int _mostOnASide;
    const Stop _stop;
};

ModelLoader::ModelLoader(QObject *parent) : QObject(parent)
{
    Apps::helperPool().setMaxThreadCount(std::max(QThread::idealThreadCount() - 1, 1));
}

ModelLoader::~ModelLoader()
{
    cancel();
    _worker.finish();
}

template <typename Action>
void ModelLoader::post(const Stop &load, Action action)
{
    QMetaObject::invokeMethod(
        this,
        [this, load, action = std::move(action)] {
            if (_stop == load)
                action();
        },
        Qt::QueuedConnection);
}

void ModelLoader::finish()
{
    _stop.reset();
}

void ModelLoader::load(const QString &path, int mostTexturePixelsOnASide)
{
    cancel();
    _stop = std::make_shared<std::atomic<bool>>(false);
    const Job job(*this, QFileInfo(path).absoluteFilePath(), mostTexturePixelsOnASide, _stop);
    _worker.start([job] { job.run(); });
}

void ModelLoader::cancel()
{
    if (_stop)
        *_stop = true;
}

} // namespace Halvard::Orv::Viewer
