/// \file
/// The second half of a load: from arrays to buffers and draw bundles.
#pragma once

#include <OrvModel/OrvModelExport.h>
#include <OrvModel/PreparedModel.h>

#include <OrvGL/GPUModel.h>

#include <memory>

namespace Halvard::Orv {

/// \addtogroup upload
/// @{

/// Makes buffers of a prepared model and adds its bundles to `model`, as loadModelFromOBJFile()
/// does: 16-bit indices up to 65534 vertices, 32-bit ones above; one vertex buffer per attribute;
/// one indirect command per material; the materials, and one "InstanceInfo" record with identity
/// matrices per command.
///
/// \param prepared stays as it is; may be uploaded again, also into other models.
/// \param model receives the bundles, after those that it has.
/// \return false, with `model` as it was, where no OpenGL context is current, or OpenGL or the
///         process has no room; a warning says so in the second case. An empty model is uploaded at once.
///
/// Call it on the thread whose OpenGL context is current.
ORVMODEL_EXPORT bool uploadPreparedModel(const PreparedModel &prepared, GPUModel &model);

/// The same in steps, for programs that draw in between.
///
///     ModelUpload upload(*prepared, *model);
///     while (upload.step())
///         drawTheFrame();
///
/// A step makes one buffer; the last one adds all bundles. The model has all of them then, or, when
/// a step fails or the object is destroyed before, none.
class ORVMODEL_EXPORT ModelUpload
{
public:
    /// Does nothing yet. Both must outlive the object.
    ModelUpload(const PreparedModel &prepared, GPUModel &model);
    ~ModelUpload();
    ModelUpload(const ModelUpload &) = delete;
    ModelUpload &operator=(const ModelUpload &) = delete;

    /// Makes the next buffer, with the same OpenGL context current every time, or one that shares
    /// its objects.
    /// \return whether more is to come; false also when the step failed.
    bool step();

    /// Bytes uploaded of all: 0 before the first step, 1 when everything is in the model.
    double fraction() const;

    /// Whether the bundles are in the model.
    bool isFinished() const;

private:
    class Steps;
    std::unique_ptr<Steps> _steps;
};

/// @}

} // namespace Halvard::Orv
