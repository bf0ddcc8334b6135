/// \file
/// A model file, read.
#pragma once

#include "FileStamp.h"

#include <render/Material.h>
#include <render/ModelGeometry.h>
#include <render/TextureCache.h>

#include <OrvModel/PreparationReport.h>
#include <OrvModel/PreparedModel.h>
#include <common/ModelSummary.h>

#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QImage>

#include <memory>
#include <vector>

namespace Halvard::Orv::Viewer {

/// What a window tells about a model, for as long as it shows it.
struct ModelDetails
{
    struct Material
    {
        QString name;
        quint64 triangles = 0;
        Render::Material values;
        /// Of the diffuse texture, made small; null where there is none, or none can be shown.
        QImage thumbnail;
    };

    QString path; ///< as it was asked for, made absolute
    qint64 fileBytes = 0;
    qint64 nanoseconds = 0; ///< of the preparation
    PreparationReport report;
    bool normalsAreGenerated = false;
    std::vector<Material> materials; ///< one a draw command
    Apps::ModelSummary summary;
    Render::Bounds bounds;
    /// The libraries and the textures that the model names, whether they exist or not.
    QStringList libraries;
    QStringList textures;
    /// Of the model as it was before it was read, and of the others.
    FileStamps stamps;
};

/// A model on its way from the worker to the window.
struct LoadedFile
{
    std::shared_ptr<const ModelDetails> details;
    std::unique_ptr<PreparedModel> model;
    Render::ModelGeometry geometry;
    std::unique_ptr<Render::TextureCache> textures;
};

} // namespace Halvard::Orv::Viewer

Q_DECLARE_METATYPE(std::shared_ptr<const Halvard::Orv::Viewer::ModelDetails>)
