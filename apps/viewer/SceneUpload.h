/// \file
/// Brings a model to the GPU between frames.
#pragma once

#include "LoadedFile.h"

#include <OrvModel/ModelUploading.h>

#include <memory>

namespace Halvard::Orv {
class GPUModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Viewer {

/// One upload. Needs the same OpenGL context current for every call.
class SceneUpload
{
public:
    explicit SceneUpload(std::shared_ptr<LoadedFile> file);
    ~SceneUpload();
    SceneUpload(const SceneUpload &) = delete;
    SceneUpload &operator=(const SceneUpload &) = delete;

    /// Uploads the next buffer or the next texture. \return whether more is to come.
    bool step();

    /// From 0 to 1: of the buffers.
    double fraction() const;

    /// After the last step: the model, or null where the GPU has no room for it.
    std::unique_ptr<GPUModel> takeModel();
    LoadedFile &file() { return *_file; }

private:
    std::shared_ptr<LoadedFile> _file;
    std::unique_ptr<GPUModel> _model;
    std::unique_ptr<ModelUpload> _upload;
};

} // namespace Halvard::Orv::Viewer
