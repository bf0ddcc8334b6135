/// \file
/// A model as plain arrays: everything that a renderer needs of a file, without OpenGL.
#pragma once

#include <OrvModel/OrvModelExport.h>
#include <OrvModel/PreparationReport.h>

#include <OrvCore/InstanceData.h>

#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtCore/QtGlobal>
#include <QtGui/QVector3D>

#include <memory>

namespace Halvard::Orv {

/// \addtogroup prepare
/// @{

class PreparedModelData;

/// A triangle mesh with one index for all attributes, its triangles sorted by material.
///
/// prepareModelFromOBJFile() and its siblings make it; uploadPreparedModel() makes a GPUModel of
/// it; and whoever draws otherwise, or does not draw at all, reads the arrays:
///
///     for (int c = 0; c < model->commands().size(); ++c) {
///         const PreparedModel::Command command = model->commands().at(c);
///         for (quint32 i = 0; i < command.indexCount; i += 3)
///             triangle(model->indices() + command.firstIndex + i, model->material(c));
///     }
///
/// A model is made on one thread and may be read on any, by several at once. All pointers stay
/// what they are until the model is destroyed or assigned to, also when it is moved.
class ORVMODEL_EXPORT PreparedModel
{
public:
    /// One value per vertex.
    struct Attribute
    {
        QString name;        ///< "va_Vertex", "va_Normal", "va_TexCoord", or a builder's own
        int components;      ///< floats per value: 3, 3 and 2 for the three above
        const float *values; ///< vertexCount() x `components` floats, the model's own
    };

    /// The triangles of one material.
    struct Command
    {
        QString material;   ///< its name; "<default>" for faces that no "usemtl" precedes
        quint32 firstIndex; ///< where its triangles begin in indices()
        quint32 indexCount; ///< three a triangle; 0 where no face gave one
    };

    /// An empty model.
    PreparedModel();
    ~PreparedModel();
    PreparedModel(PreparedModel &&other) noexcept;            ///< `other` is empty afterwards.
    PreparedModel &operator=(PreparedModel &&other) noexcept; ///< `other` is empty afterwards.
    PreparedModel(const PreparedModel &) = delete;
    PreparedModel &operator=(const PreparedModel &) = delete;

    /// Whether there is nothing to draw: no triangle.
    bool isEmpty() const;

    /// Number of vertices, all of them different in their bytes.
    quint32 vertexCount() const;

    /// Number of indices, three a triangle.
    quint32 indexCount() const;

    /// indexCount() vertex numbers, each below vertexCount(); null when there are none.
    const quint32 *indices() const;

    /// Positions first, then normals, then the others by name. Attributes of a builder that are
    /// not made of floats are not listed; uploadPreparedModel() uploads them all the same.
    QVector<Attribute> attributes() const;

    /// One per material that has faces, in the order in which the materials were defined. Of a
    /// builder with several batching keys, key by key.
    QVector<Command> commands() const;

    /// The values of a command's material, a record of the plan "OBJMaterial".
    /// \param command a position in commands().
    InstanceData material(int command) const;

    /// Whether the normals were computed because the file has none. They then point to the side
    /// from which the triangles run clockwise.
    bool normalsAreGenerated() const;

    /// \name The box around what is drawn
    /// The smallest and the greatest coordinates of the vertices that triangles use; coordinates
    /// that are not finite do not count. Both zero where there is none.
    ///
    /// The first call of either computes them, in some nanoseconds per index: make it in the
    /// background where no frame may be missed.
    /// @{
    QVector3D minimum() const; ///< In the file's units.
    QVector3D maximum() const; ///< In the file's units.
    /// @}

    /// What the file held, which of its faces are drawn, and where the time went.
    const PreparationReport &report() const;

    /// For the library itself: what is behind the model.
    const PreparedModelData &data() const;
    /// For the library itself: a model of these data.
    explicit PreparedModel(std::unique_ptr<PreparedModelData> data);

private:
    std::unique_ptr<PreparedModelData> _data;
};

/// @}

} // namespace Halvard::Orv
