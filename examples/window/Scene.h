/// \file
/// A model on the GPU, brought there piece by piece.
#pragma once

#include "Loading.h"

#include <OrvGL/GPUModel.h>
#include <OrvModel/ModelUploading.h>

#include <QtGui/QMatrix4x4>

#include <map>
#include <memory>

namespace Halvard::Orv {
class Texture;
}

/// Needs the same OpenGL context current for all of its life.
class Scene
{
public:
    /// \param loaded with a model. Nothing is uploaded yet.
    explicit Scene(LoadedModel loaded);
    ~Scene();
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;

    /// Uploads one buffer, or one image: what fits between two frames.
    /// \return whether more is to come.
    bool uploadNext();

    /// Whether all of it is on the GPU; false for good where OpenGL had no room.
    bool isComplete() const { return _isComplete; }

    /// \param program made by makeSceneProgram().
    /// \param view of the unit sphere, into which the model is scaled.
    void draw(unsigned program, QMatrix4x4 view, const QMatrix4x4 &projection);

private:
    void uploadNextImage();
    void uploadRecords();

    LoadedModel _loaded; // its arrays are given up when they are on the GPU
    bool _normalsAreGenerated;
    Halvard::Orv::GPUModel _model;
    std::unique_ptr<Halvard::Orv::ModelUpload> _upload;
    std::map<QString, std::unique_ptr<Halvard::Orv::Texture>> _images; // by path
    unsigned _records = 0;
    bool _isComplete = false;
};

/// The shaders of a scene, as a linked program. Qt's logger hears what the compiler has to say.
unsigned makeSceneProgram();
