/// \file
/// A bundle of draw commands over shared buffers.
#pragma once

#include <OrvGL/OrvGLExport.h>

#include <QtCore/QObject>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

class BufferObject;
class OpenGLDeviceContext;
class VertexArrayObject;

/// One indexed draw, laid out as OpenGL reads it from an indirect buffer.
struct DrawElementsIndirectCommand
{
    quint32 count = 0;         ///< Indices to draw.
    quint32 instanceCount = 0; ///< How many instances.
    quint32 firstIndex = 0;    ///< The first index, counted in indices.
    qint32 baseVertex = 0;     ///< Added to every index.
    quint32 baseInstance = 0;  ///< The first instance.
};

static_assert(sizeof(DrawElementsIndirectCommand) == 20, "OpenGL reads five 32-bit fields");

/// Whether all five fields agree.
inline bool operator==(const DrawElementsIndirectCommand &a, const DrawElementsIndirectCommand &b)
{
    return a.count == b.count && a.instanceCount == b.instanceCount &&
           a.firstIndex == b.firstIndex && a.baseVertex == b.baseVertex &&
           a.baseInstance == b.baseInstance;
}

/// Whether a field differs.
inline bool operator!=(const DrawElementsIndirectCommand &a, const DrawElementsIndirectCommand &b)
{
    return !(a == b);
}

/// A draw bundle: vertex attributes, an element buffer, and the runs of it to draw.
///
/// Setters and getters need no context. Everything is shared or copied; nothing is uploaded before
/// the first draw().
class ORVGL_EXPORT DrawBuffers : public QObject
{
public:
    /// An empty bundle of triangles.
    /// \param parent owns the bundle when not null.
    explicit DrawBuffers(QObject *parent = nullptr);
    ~DrawBuffers() override;

    /// Sets the vertex attributes; null draws nothing.
    void setVAO(const QSharedPointer<VertexArrayObject> &vao);

    /// The vertex attributes set; null before.
    QSharedPointer<VertexArrayObject> VAO() const;

    /// Draws with indices.
    /// \param buffer the element buffer; null draws nothing.
    /// \param count indices in it. Commands may not reach beyond.
    /// \param type GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT or GL_UNSIGNED_INT.
    void setIndexedDraw(const QSharedPointer<BufferObject> &buffer, int count, unsigned int type);

    /// Sets the number of vertices; for reading back only.
    void setVertexCount(unsigned int count);

    /// Sets what the indices form, such as GL_TRIANGLES.
    void setPrimitiveType(unsigned int type);

    /// Sets the draws, replacing earlier ones.
    /// \param commands `count` of them, copied; may be null when `count` is 0.
    /// \param count a number below 0 counts as 0.
    void setDrawElementsIndirectCommands(const DrawElementsIndirectCommand *commands, int count);

    QSharedPointer<BufferObject> indexBuffer() const; ///< Null before setIndexedDraw().
    int indexCount() const;                           ///< 0 before setIndexedDraw().
    unsigned int indexType() const;                   ///< GL_UNSIGNED_INT before setIndexedDraw().
    unsigned int vertexCount() const;                 ///< 0 before setVertexCount().
    unsigned int primitiveType() const;               ///< GL_TRIANGLES before setPrimitiveType().

    /// The commands exactly as they were given.
    const QVector<DrawElementsIndirectCommand> &commands() const;

    /// Draws a run of the commands with one glMultiDrawElementsIndirect.
    ///
    /// Needs the buffers' context current and OpenGL 4.3 (or ARB_multi_draw_indirect and what it
    /// stands on); older drivers draw nothing and a warning says so. In the vertex shader
    /// gl_DrawIDARB counts from 0 at `firstCommand`.
    ///
    /// A command that reaches beyond the element buffer draws nothing, with a warning; the others
    /// are drawn. Afterwards `program` is in use, and no vertex array and no indirect buffer is
    /// bound.
    /// \param program a linked program.
    /// \param firstCommand, commandCount the run, which must lie within commands(); a run of 0
    ///     commands draws nothing and is no error.
    /// \return false, after a warning, when nothing could be drawn. The same warning is not logged
    ///     twice in a row.
    bool draw(unsigned int program, int firstCommand, int commandCount);

private:
    QString whatIsMissing(const QSharedPointer<OpenGLDeviceContext> &context, int firstCommand,
                          int commandCount) const;
    bool uploadCommands(OpenGLDeviceContext &context);
    QVector<DrawElementsIndirectCommand> drawableCommands() const;
    bool refuse(const QString &reason);

    QSharedPointer<VertexArrayObject> _vao;
    QSharedPointer<BufferObject> _indexBuffer;
    QSharedPointer<BufferObject> _commandBuffer; // null when out of date
    qint64 _checkedIndexBytes = 0;               // the commands were checked against so many
    QVector<DrawElementsIndirectCommand> _commands;
    QString _lastRefusal;
    int _indexCount = 0;
    unsigned int _indexType;
    unsigned int _vertexCount = 0;
    unsigned int _primitiveType;
};

/// @}

} // namespace Halvard::Orv

Q_DECLARE_TYPEINFO(Halvard::Orv::DrawElementsIndirectCommand, Q_PRIMITIVE_TYPE);
