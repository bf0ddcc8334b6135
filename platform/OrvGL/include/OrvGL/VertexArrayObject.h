/// \file
/// Vertex attributes by name.
#pragma once

#include <OrvGL/OrvGLExport.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

class BufferObject;
class OpenGLDeviceContext;

/// The vertex attributes of a draw: which buffer feeds which attribute of the shaders.
///
/// Attributes are kept by name; their locations are asked of the program that draws, so one object
/// serves any number of programs. OpenGL does not share vertex arrays between contexts: the OpenGL
/// object is made on first bind(), and again when another context is current.
class ORVGL_EXPORT VertexArrayObject
{
public:
    /// One vertex attribute, its values tightly packed in its buffer.
    struct Attribute
    {
        QString name;                        ///< As the shaders spell it.
        QSharedPointer<BufferObject> buffer; ///< `components` values per vertex.
        int components;                      ///< Values per vertex.
        unsigned int type;                   ///< OpenGL type of one value, such as GL_FLOAT.
    };

    VertexArrayObject();
    ~VertexArrayObject();
    VertexArrayObject(const VertexArrayObject &) = delete;
    VertexArrayObject &operator=(const VertexArrayObject &) = delete;

    /// Feeds the attribute `name` from `buffer`. Needs no context. A name registered before is
    /// replaced in its place.
    /// \param name as the shaders spell it.
    /// \param buffer shared; null leaves the attribute without values when drawing.
    /// \param components 1 to 4; other numbers are kept, but log a warning, and the attribute is
    ///     left without values when drawing.
    /// \param type the type of the values in the buffer. A float attribute of the shader reads
    ///     integers as the numbers they are (not scaled to 0..1); an integer attribute needs an
    ///     integer type, a double one GL_DOUBLE, and is left without values otherwise.
    void registerBO(const QString &name, const QSharedPointer<BufferObject> &buffer, int components,
                    unsigned int type);

    /// What was registered, in the order of first registration.
    const QVector<Attribute> &attributes() const { return _attributes; }

    /// Binds the vertex array and connects the buffers to the attributes of `program`. Attributes
    /// that the program lacks are skipped; those of the program that were not registered read their
    /// current generic value. Takes a linked program; binds nothing to GL_ARRAY_BUFFER in the end.
    /// \return false, with nothing bound, when no context with vertex arrays is current.
    bool bind(unsigned int program);

    /// Leaves no vertex array bound.
    void release();

private:
    void makeFor(const QSharedPointer<OpenGLDeviceContext> &context);
    void drop();

    QVector<Attribute> _attributes;
    QSharedPointer<OpenGLDeviceContext> _context; // the one _id is of
    unsigned int _id = 0;
    QVector<unsigned int> _enabledLocations;
};

/// @}

} // namespace Halvard::Orv
