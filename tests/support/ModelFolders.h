/// \file
/// The models of a folder.
#pragma once

#include <QtCore/QStringList>

namespace OrvTest {

/// Every OBJ file in a folder and the folders in it, sorted; none where there is no such folder.
QStringList modelsBelow(const QString &folder);

} // namespace OrvTest
