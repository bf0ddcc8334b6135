/// \file
/// The key that copies, in a part of the window.
#pragma once

#include <functional>

class QString;
class QWidget;

namespace Halvard::Orv::Viewer {

/// While `widget` has the focus, the key that copies does this, whatever it does elsewhere in the
/// window.
void onCopyKey(QWidget *widget, std::function<void()> copy);

/// To the clipboard, for pasting anywhere.
void copyText(const QString &text);

} // namespace Halvard::Orv::Viewer
