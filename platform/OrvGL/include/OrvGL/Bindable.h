/// \file
/// What can be bound, and bound again.
#pragma once

#include <OrvGL/OrvGLExport.h>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

/// Something that can be bound to a binding point of the current OpenGL context.
///
/// bind() and release() need the object's context, or one that shares with it, to be current; they
/// log a warning and do nothing otherwise. binding() and restore() need any context and do nothing
/// without one. AutoBinder binds for the length of a scope.
class ORVGL_EXPORT Bindable
{
public:
    /// What a binding point held.
    struct Binding
    {
        unsigned int
            unit; ///< The texture unit, as glActiveTexture takes it; 0 where there is none.
        unsigned int name; ///< The OpenGL name bound there; 0 for none.
    };

    Bindable() = default;
    Bindable(const Bindable &) = delete;
    Bindable &operator=(const Bindable &) = delete;
    virtual ~Bindable();

    /// Binds the object to its target.
    virtual void bind() = 0;

    /// Leaves nothing bound to the object's target.
    virtual void release() = 0;

    /// What is bound now at the point where bind() would bind; {0, 0} with no context current.
    virtual Binding binding() const = 0;

    /// Puts back what binding() answered. A name that was deleted meanwhile leaves nothing bound.
    virtual void restore(const Binding &previous) = 0;
};

/// @}

} // namespace Halvard::Orv
