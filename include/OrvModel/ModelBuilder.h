/// \file
/// The collector of a model's geometry and materials before they go to the GPU.
#pragma once

#include <OrvModel/ModelDataStream.h>
#include <OrvModel/OrvModelExport.h>

#include <OrvCore/InstanceData.h>

#include <OrvGL/GPUModel.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <memory>

namespace Halvard::Orv {

/// \addtogroup build
/// @{

struct ModelBuilderState;

/// Collects vertex attributes, faces and material groups the way an OBJ file
/// gives them, and turns them into what a GPU draws.
///
/// Every attribute has its own values and its own index per face corner. The
/// usual order:
///
///     ModelBuilder builder({}, 0);
///     builder.createMaterialGroup("red", material, -1, 0);
///     builder.createVertexAttribute("va_Vertex", 3, GL_FLOAT, 0, 0);
///     builder.addValuesToVertexAttribute("va_Vertex", 9, floats, GL_FLOAT);
///     builder.addVertexCountsToFaces(1, &three);            // a triangle
///     builder.addIndicesToVertexAttribute("va_Vertex", 3, indices);
///     builder.addFacesToMaterialGroup("red", 1, &faceNumber, QString());
///     builder.upload(model, record, "va_Vertex", QString(), GL_STATIC_DRAW, GL_TRIANGLES);
///
/// Building operations return nothing: unknown names and mismatched types make
/// them do nothing. Names are exact and case-sensitive. Indices, counts and face
/// numbers are not checked when they are added; what selects nothing selects
/// zeros when the streams are built.
///
/// Groups are kept, prepared and uploaded in the order of their definition,
/// attributes in the order of their names, batches in the order of their keys.
///
/// What an allocator or a stream throws passes through, and leaves nothing half
/// done: each operation says what there is then. Destructors must not throw.
///
/// A builder is used by one thread at a time; builders may be made on several
/// threads at once.
class ORVMODEL_EXPORT ModelBuilder
{
public:
    /// Faces that are drawn with one material.
    struct MaterialGroup
    {
        InstanceData instanceData;             ///< the material's values
        int id = 0;                            ///< identifier, see createMaterialGroup()
        QSharedPointer<ModelDataStream> faces; ///< face numbers in the order added
        quint64 flags = 0;                     ///< the caller's bits, masked for batching
        QString objectName;                    ///< object whose faces came first
    };

    /// \param allocator makes every stream of the builder; shared. Null: the
    ///        builder makes a ModelDataArrayAllocator of its own.
    /// \param flagsMask groups whose flags agree in these bits share one bundle
    ///        of draw commands.
    ///
    /// The first builder of the process registers the plan "InstanceInfo".
    ModelBuilder(const QSharedPointer<ModelDataStreamAllocator> &allocator, quint64 flagsMask);
    ~ModelBuilder();
    ModelBuilder(const ModelBuilder &) = delete;
    ModelBuilder &operator=(const ModelBuilder &) = delete;

    /// Back to the state after construction; keeps the allocator and the mask.
    ///
    /// When the allocator throws, or gives null, the builder is empty all the same,
    /// and takes no faces until it has been cleared again.
    void clear();

    /// Whether there is a material group of that name.
    bool hasMaterialGroup(const QString &name) const;
    /// The group's id, -1 for an unknown name.
    int materialGroupId(const QString &name) const;
    /// The group's flags, 0 for an unknown name.
    quint64 materialGroupFlags(const QString &name) const;
    /// Whether there is a vertex attribute of that name.
    bool hasVertexAttribute(const QString &name) const;

    /// Whether there is something to draw: a material group, a face, an
    /// attribute, and no attribute that has a value stream without values or
    /// without indices. Counts are not compared. Logs nothing.
    bool isValid() const;

    /// Makes an attribute, or starts an existing one afresh.
    /// \param name as the shader spells it.
    /// \param components elements per value, for example 3 for a position.
    /// \param type OpenGL type of the elements.
    /// \param valueCount, indexCount elements (of unspecified value) that the
    ///        streams hold at once; what is added comes after them.
    ///
    /// The new values are had before the old ones are released, then the new
    /// indices before the old ones; that is the last call that may throw. When
    /// the values cannot be had, the attribute stays as it was; when the indices
    /// cannot, there is no such attribute any more.
    void createVertexAttribute(const QString &name, int components, unsigned type,
                               unsigned long valueCount, unsigned long indexCount);

    /// Adds `count` elements (single numbers, not whole values) to an attribute.
    /// Nothing happens when `type` is not the attribute's.
    void addValuesToVertexAttribute(const QString &name, unsigned long count, const void *data,
                                    unsigned type);

    /// Adds `count` per-corner indices, counted in whole values, to an attribute.
    void addIndicesToVertexAttribute(const QString &name, unsigned long count,
                                     const unsigned *indices);

    /// Adds `count` faces, each given by its number of corners.
    void addVertexCountsToFaces(unsigned long count, const unsigned *counts);

    /// Asks for normals: upload() computes the attribute `name` from the
    /// positions. The last name counts.
    void generateNormals(const QString &name);

    /// \name Reserved
    /// Part of the interface; they do nothing, at any time.
    /// @{
    void removeUnusedVertices();    ///< Does nothing.
    void removeDuplicateVertices(); ///< Does nothing.
    /// @}

    /// Makes a material group, or starts an existing one afresh without faces and
    /// without an object name.
    /// \param name by which faces are added to it.
    /// \param instanceData the material: the record of the group's draw command.
    /// \param id when negative, the number of groups before this call.
    /// \param flags the caller's bits; see the constructor's `flagsMask`.
    ///
    /// When the allocator throws, the group stays as it was.
    void createMaterialGroup(const QString &name, const InstanceData &instanceData, int id,
                             quint64 flags);

    /// Adds `count` face numbers (positions in the sequence of faces) to a group.
    ///
    /// A group remembers the object whose faces came first. Faces of another
    /// object are added all the same, with a warning.
    void addFacesToMaterialGroup(const QString &name, unsigned long count, const unsigned *faces,
                                 const QString &objectName);

    /// Gives every attribute one value per GPU vertex, and all of them one shared
    /// index per corner, then welds with optimizeGPUStreams().
    ///
    /// \param deduplicate true: corners whose indices agree in every attribute
    ///        become one GPU vertex, numbered in order of first appearance.
    ///        false: every corner becomes one.
    ///
    /// Does nothing when all attributes have their streams already, or there is
    /// none. An index that selects no value, and a corner past the end of an
    /// attribute's indices, gets a value of zeros. Streams from an earlier time
    /// are replaced one by one. When a stream cannot be had, or something throws,
    /// no attribute has GPU streams.
    void buildGPUFriendlyStreams(bool deduplicate);

    /// Welds GPU vertices whose bytes are identical in every attribute, keeps
    /// them in order of first appearance, and renumbers the shared indices.
    ///
    ///     positions           indices       positions      indices
    ///     A B C  C B D   and  0 1 2 3 4 5   A B C D   and  0 1 2 2 1 3
    ///
    /// No tolerance: 0.0 and -0.0 stay two. One debug line reports the effect.
    /// Does nothing when an attribute lacks its GPU streams, or there is none. When
    /// a stream cannot be had, or something throws, no attribute has them.
    void optimizeGPUStreams();

    /// Triangulates a group's faces into the combined index stream and files one
    /// indirect draw command for it. upload() calls it for every group with
    /// faces; calling it outside that sequence is not supported.
    ///
    /// \param name, group the group.
    /// \param positions GPU values of the position attribute, three floats a vertex.
    /// \param indices GPU vertex number per corner.
    /// \param faceOffsets per face the position in `indices` of its first corner.
    ///
    /// A face that does not exist, or whose corners lie outside `indices` or
    /// `positions`, gives no triangle. Adding the triangles is the last call that
    /// may throw; when it does, the builder has no commands and no combined indices.
    void prepareMaterialGroupForUpload(const QString &name, const MaterialGroup &group,
                                       const QSharedPointer<ModelDataStream> &positions,
                                       const QSharedPointer<ModelDataStream> &indices,
                                       const QVector<unsigned int> &faceOffsets);

    /// Builds what is not built yet and adds it to `model`: one element buffer
    /// (16-bit indices up to 65534 vertices), one vertex buffer per attribute, and
    /// per masked flags one bundle with its draw commands, materials and instance
    /// records. Another call adds the same again in new buffers.
    ///
    /// \param model receives the bundles; not null, not owned.
    /// \param instanceData copied once for every draw command.
    /// \param positionAttribute an attribute whose GPU values are at least three
    ///        GL_FLOAT each; generateNormals() makes such attributes, too.
    /// \param materialIdMember member of the instance record that receives a
    ///        group's id; null: the materials go into a collection of their own.
    /// \param usage OpenGL buffer usage, for example GL_STATIC_DRAW.
    /// \param primitiveType of every bundle, for example GL_TRIANGLES.
    ///
    /// Silently adds nothing when the builder is not valid, the attribute does not
    /// exist or has no positions, no OpenGL context is current on the calling
    /// thread, or a stream cannot be had.
    ///
    /// Streams are asked for their type before each bundle is added. That of the
    /// first bundle is the last call that may throw: until then nothing is added,
    /// and the builder can be uploaded again.
    void upload(GPUModel *model, const InstanceData &instanceData, const QString &positionAttribute,
                const QString &materialIdMember, unsigned int usage, unsigned int primitiveType);

    /// What the builder holds, for the library's own sources: declared and used
    /// in there only.
    ModelBuilderState &state() { return *_state; }
    const ModelBuilderState &state() const { return *_state; } ///< The same to read.

private:
    std::unique_ptr<ModelBuilderState> _state;
};

/// @}

} // namespace Halvard::Orv
