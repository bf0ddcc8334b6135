/// \file
/// What holds for every repair of every file.
#pragma once

#include <QtCore/QString>

#include <string>
#include <vector>

namespace OrvTest {

/// Repairs a model, and looks whether what repairs promise is true: what is fixable is gone, no
/// face is lost that was drawn, a clean model comes out identical, another repair changes nothing,
/// and inputs stay as they are.
/// \param output where the result goes.
/// \return what is not true, in words.
std::vector<std::string> brokenPromises(const QString &model, const QString &output);

} // namespace OrvTest
