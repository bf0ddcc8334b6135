#include <OrvGL/AutoBinder.h>

namespace Halvard::Orv {

Bindable::~Bindable() = default;

AutoBinder::AutoBinder(Bindable *bindable)
    : _bindable(bindable), _previous(bindable ? bindable->binding() : Bindable::Binding{0, 0})
{
    if (_bindable)
        _bindable->bind();
}

AutoBinder::~AutoBinder()
{
    if (_bindable)
        _bindable->restore(_previous);
}

} // namespace Halvard::Orv
