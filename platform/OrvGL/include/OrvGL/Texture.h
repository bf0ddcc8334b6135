/// \file
/// OpenGL textures.
#pragma once

#include <OrvGL/Bindable.h>
#include <OrvGL/OrvGLExport.h>

#include <QtCore/QObject>
#include <QtCore/QSharedPointer>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

class ShareGroup;

/// An OpenGL texture object and what is known about it.
///
/// Usable with the context current in which it was made, or one that shares objects with it. It may
/// be destroyed anywhere: the OpenGL texture is then deleted as soon as one of those contexts is
/// seen again, or goes with the last of them.
class ORVGL_EXPORT Texture : public QObject, public Bindable
{
public:
    /// Makes the OpenGL texture object. Its storage is left to the caller: bind it and call
    /// glTexImage2D or the like with these same numbers. With no context current it logs a warning
    /// and makes a texture without an OpenGL object (id() is 0), on which every operation does
    /// nothing.
    /// \param target such as GL_TEXTURE_2D.
    /// \param internalFormat such as GL_RGBA.
    /// \param width, height in texels.
    /// \param depth slices of a 3D texture, layers of an array; 0 for flat textures.
    /// \param parent owns the texture when not null.
    Texture(unsigned int target, int internalFormat, int width, int height, int depth,
            QObject *parent);
    ~Texture() override;

    unsigned int id() const { return _id; }                ///< The OpenGL name; 0 without one.
    unsigned int target() const { return _target; }        ///< As given.
    int internalFormat() const { return _internalFormat; } ///< As given.
    int width() const { return _width; }                   ///< As given.
    int height() const { return _height; }                 ///< As given.
    int depth() const { return _depth; }                   ///< As given.

    /// Says that the contents are complete and shared: nobody is to write them any more. Not
    /// enforced.
    void setReadOnly();

    /// Whether setReadOnly() was called.
    bool isReadOnly() const { return _readOnly; }

    /// Whether there is an OpenGL texture, and a context that knows it is current.
    bool isUsable() const;

    /// Binds to the active texture unit.
    void bind() override;

    /// Binds to texture unit `unit`, counted from 0, and leaves the active unit as it is.
    void bindToUnit(unsigned int unit);

    /// Leaves nothing bound to target() on the active unit.
    void release() override;

    Binding binding() const override;
    void restore(const Binding &previous) override;

private:
    bool checkUsable(const char *operation) const;

    QSharedPointer<ShareGroup> _group;
    unsigned int _id = 0;
    unsigned int _target;
    int _internalFormat;
    int _width;
    int _height;
    int _depth;
    bool _readOnly = false;
};

/// @}

} // namespace Halvard::Orv
