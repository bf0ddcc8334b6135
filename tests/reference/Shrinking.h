/// \file
/// From a file that shows something to the smallest that still does.
#pragma once

#include "reference/ModelFiles.h"

#include <functional>

namespace OrvReference {

/// Drops files, lines, words and characters as long as `shows` says yes. What is left is minimal in
/// that no single one of them can be dropped, unless it took too many attempts.
/// \param model shows it.
/// \param attempts `shows` is called no more often than that.
ModelFiles shrunk(const ModelFiles &model, const std::function<bool(const ModelFiles &)> &shows,
                  int attempts);

} // namespace OrvReference
