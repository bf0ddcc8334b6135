/// \file
/// What a material looks like, in the size of an icon.
#pragma once

#include "../LoadedFile.h"

#include <QtGui/QIcon>

namespace Halvard::Orv::Viewer {

/// The size that shows swatch and texture side by side.
constexpr QSize MaterialIconSize(60, 28);

/// A swatch of the diffuse colour, over a checker where it is not opaque, and beside it the texture,
/// or a crossed frame for one that cannot be shown. Sharp at any resolution.
QIcon materialIcon(const ModelDetails::Material &material);

} // namespace Halvard::Orv::Viewer
