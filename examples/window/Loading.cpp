#include "Loading.h"

#include <OrvModel/ModelPreparing.h>

#include <chrono>

using namespace Halvard::Orv;

Loading::Loading(const QString &fileName)
    : _result(std::async(std::launch::async, [this, fileName] { return load(fileName); }))
{}

Loading::~Loading()
{
    _isStopped = true;
}

bool Loading::isReady() const
{
    return _result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

LoadedModel Loading::take()
{
    return _result.get();
}

// On the thread in the background. Without a pool in the options, the preparation uses this thread
// alone, and leaves the other cores to those who draw.
LoadedModel Loading::load(const QString &fileName)
{
    constexpr double OfTheModel = 0.8; // the rest is for the images
    PrepareOptions options;
    options.progress = [this](const PrepareProgress &progress) {
        _fraction = OfTheModel * progress.fraction;
        return !_isStopped;
    };
    QString reason;
    options.reason = &reason;
    LoadedModel loaded;
    loaded.model = prepareModelFromOBJFile(fileName, loaded.error, options);
    if (!loaded.model) {
        loaded.error += ": " + reason;
        return loaded;
    }
    // The box is computed when it is asked for first, from all vertices: not between frames.
    const QVector3D low = loaded.model->minimum(), high = loaded.model->maximum();
    loaded.centre = (low + high) / 2;
    loaded.radius = (high - low).length() / 2;

    const int count = loaded.model->commands().size(); // one for each material
    PrepareTextureOptions imageOptions;
    imageOptions.convertsTo32Bits = true; // grey and indexed images, too
    for (int command = 0; command < count && !_isStopped; ++command) {
        const QString path = loaded.model->material(command).texturePath("map_Kd");
        if (!path.isEmpty() && !loaded.images.contains(path))
            loaded.images.insert(path, prepareTexture(path, imageOptions));
        _fraction = OfTheModel + (1 - OfTheModel) * (command + 1) / count;
    }
    return loaded;
}
