/// \file
/// What a model holds and what became of it: what `orv info` tells, and the window.
#pragma once

#include <OrvModel/PreparationReport.h>

#include <QtCore/QString>
#include <QtGui/QVector3D>

#include <functional>
#include <utility>
#include <vector>

namespace Halvard::Orv {
class PreparedModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Apps {

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

/// What is told of the files that a model names. Null functions change nothing.
struct SummaryPaths
{
    /// How a path is told.
    std::function<QString(const QString &path)> shown;
    /// Why a file is not to be looked for, to end the sentence "The texture 'x' "; empty where it
    /// may.
    std::function<QString(const QString &path)> objection;
};

/// Fills in what the model knows. The caller adds what it knows of the file.
ModelSummary summarize(const PreparedModel &model, const SummaryPaths &paths = {});

/// A line of a summary.
struct SummaryRow
{
    int indent = 1;
    QString label;
    QString value; ///< empty for a line without columns
    QString remark;
};

struct SummarySection
{
    QString heading;
    std::vector<SummaryRow> rows;
};

/// For people to read. Printable.
std::vector<SummarySection> summarySections(const ModelSummary &summary);

/// The same as lines, below the file's name.
QString summaryText(const ModelSummary &summary);

} // namespace Halvard::Orv::Apps
