/// \file
/// What `orv info` tells about a model.
#pragma once

#include "UndrawnFaces.h"

#include <OrvModel/PreparationReport.h>

#include <QtGui/QVector3D>

#include <QtCore/QString>

#include <utility>
#include <vector>

class QIODevice;

namespace Halvard::Orv {
class PreparedModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Cli {

struct ModelSummary
{
    struct Texture
    {
        QString member;
        QString path;
        bool exists = false;
    };

    /// One draw command's material.
    struct Material
    {
        QString name;
        quint64 triangles = 0;
        std::vector<Texture> textures;
    };

    /// What an upload takes: all bundles share the buffers.
    struct GPUBytes
    {
        qint64 indices = 0;
        std::vector<std::pair<QString, qint64>> attributes; // by name
        qint64 commands = 0;

        qint64 total() const;
    };

    QString fileName;
    qint64 fileBytes = 0;
    PreparationReport report;
    std::vector<UndrawnFaces> undrawnFaces;
    qint64 nanoseconds = 0; // of the whole preparation

    quint64 bundles = 0;
    quint64 commands = 0;
    quint64 triangles = 0;
    std::vector<Material> materials;
    QVector3D minimum; // both zero where nothing is drawn
    QVector3D maximum;
    GPUBytes gpuBytes;

    /// The part of the time that belongs to no stage.
    qint64 otherNanoseconds() const;
};

/// Fills in what the model knows. The caller adds what it knows of the file.
ModelSummary summarize(const PreparedModel &model);

/// For people to read.
QString summaryText(const ModelSummary &summary);

/// For programs. \return whether all of it reached the device.
bool writeSummaryJSON(QIODevice &device, const ModelSummary &summary);

} // namespace Halvard::Orv::Cli
