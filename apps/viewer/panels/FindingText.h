/// \file
/// A finding as a page.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv {
struct Finding;
} // namespace Halvard::Orv

namespace Halvard::Orv::Viewer {

/// All that a finding says, for a text view. Names from the file are no markup.
QString findingHtml(const Finding &finding);

} // namespace Halvard::Orv::Viewer
