/// \file
/// What is behind a PreparedModel.
#pragma once

#include "Builder/ModelUpload.h"

#include <OrvModel/PreparationReport.h>

#include <QtGui/QVector3D>

#include <memory>
#include <mutex>

namespace Halvard::Orv {

class ModelBuilder;
struct PreparedGeometry;

/// Everything that is uploaded of a model, whatever it was made from.
class PreparedModelData
{
public:
    /// The smallest and the greatest coordinates of what is drawn.
    struct Box
    {
        QVector3D minimum;
        QVector3D maximum;
    };

    /// What is uploaded; its streams own the arrays. Without attributes: nothing.
    UploadInput input;
    bool normalsAreGenerated = false;
    PreparationReport report;

    /// Found when first asked for, which may be on several threads: it takes a look at every
    /// index, and not everybody wants it.
    const Box &box() const;

private:
    mutable std::once_flag _boxFlag;
    mutable Box _box;
};

/// The geometry of a file with the materials of the builder that its libraries were read into.
std::unique_ptr<PreparedModelData> takeGeometry(PreparedGeometry &&geometry,
                                                const ModelBuilder &builder);

/// What a prepared builder holds, its streams shared: for a builder that is done.
std::unique_ptr<PreparedModelData> shareStreams(const ModelBuilder &builder,
                                                const QString &positionAttribute);

/// What a prepared builder holds, copied: whoever owns the builder may go on with it.
std::unique_ptr<PreparedModelData> copyStreams(const ModelBuilder &builder,
                                               const QString &positionAttribute);

} // namespace Halvard::Orv
