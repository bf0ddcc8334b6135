#include "SceneUpload.h"

#include <OrvGL/GPUModel.h>

namespace Halvard::Orv::Viewer {

SceneUpload::SceneUpload(std::shared_ptr<LoadedFile> file)
    : _file(std::move(file)), _model(std::make_unique<GPUModel>()),
      _upload(std::make_unique<ModelUpload>(*_file->model, *_model))
{}

SceneUpload::~SceneUpload() = default;

bool SceneUpload::step()
{
    if (_upload->step())
        return true;
    return _upload->isFinished() && _file->textures->uploadNext();
}

double SceneUpload::fraction() const
{
    return _upload->fraction();
}

std::unique_ptr<GPUModel> SceneUpload::takeModel()
{
    return _upload->isFinished() ? std::move(_model) : nullptr;
}

} // namespace Halvard::Orv::Viewer
