#include <OrvModel/ModelUploading.h>

#include "Builder/ModelUpload.h"
#include "Lanes/FloatingPointState.h"
#include "PreparedModelData.h"

#include <OrvModel/PreparedModel.h>

#include <OrvGL/OpenGLDeviceContext.h>

#include <QtCore/QtDebug>

#include <new>
#include <optional>

namespace Halvard::Orv {

/// Begins with the first step: only then a context must be current.
class ModelUpload::Steps
{
public:
    Steps(const PreparedModel &prepared, GPUModel &model) : _prepared(prepared), _model(model) {}

    bool step()
    {
        if (_isFinished || _hasFailed)
            return false;
        if (_prepared.data().input.attributes.isEmpty()) {
            _isFinished = true;
            return false;
        }
        const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
        if (!context) {
            _hasFailed = true;
            return false;
        }
        if (!_upload)
            _upload.emplace(UploadInput(_prepared.data().input), context, _model);
        if (_upload->step())
            return true;
        _isFinished = _upload->hasSucceeded();
        _hasFailed = !_isFinished;
        return false;
    }

    double fraction() const
    {
        if (_isFinished)
            return 1.0;
        return _upload && !_hasFailed ? _upload->fraction() : 0.0;
    }

    bool isFinished() const { return _isFinished; }

    /// Lets go of the buffers made so far.
    void fail()
    {
        _upload.reset();
        _hasFailed = true;
    }

private:
    const PreparedModel &_prepared;
    GPUModel &_model;
    std::optional<UploadSteps> _upload;
    bool _isFinished = false;
    bool _hasFailed = false;
};

ModelUpload::ModelUpload(const PreparedModel &prepared, GPUModel &model)
    : _steps(std::make_unique<Steps>(prepared, model))
{}

ModelUpload::~ModelUpload() = default;

bool ModelUpload::step()
{
    const FloatingPointState state;
    try {
        return _steps->step();
    } catch (const std::bad_alloc &) {
        _steps->fail();
        qWarning("A model is not uploaded: there is not enough memory for it");
        return false;
    }
}

double ModelUpload::fraction() const
{
    return _steps->fraction();
}

bool ModelUpload::isFinished() const
{
    return _steps->isFinished();
}

bool uploadPreparedModel(const PreparedModel &prepared, GPUModel &model)
{
    ModelUpload upload(prepared, model);
    while (upload.step()) {
    }
    return upload.isFinished();
}

} // namespace Halvard::Orv
