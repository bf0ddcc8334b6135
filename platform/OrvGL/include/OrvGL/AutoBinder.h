/// \file
/// Binding for the length of a scope.
#pragma once

#include <OrvGL/Bindable.h>
#include <OrvGL/OrvGLExport.h>

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

/// Binds an object for as long as the binder lives and then restores what was bound before.
///
/// The same context must be current at both ends. Where the object cannot be bound (see
/// Bindable::bind()) the binding stays as it is. A texture unit that the scope made active stays
/// active.
class ORVGL_EXPORT AutoBinder
{
public:
    /// \param bindable not owned, must outlive the binder; null makes a binder that does nothing.
    explicit AutoBinder(Bindable *bindable);
    ~AutoBinder();

    AutoBinder(const AutoBinder &) = delete;
    AutoBinder &operator=(const AutoBinder &) = delete;

private:
    Bindable *_bindable;
    Bindable::Binding _previous;
};

/// @}

} // namespace Halvard::Orv
