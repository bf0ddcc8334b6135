/// \file
/// What a check says of a model against what the loader makes of it.
#pragma once

#include <QtCore/QString>

#include <string>
#include <vector>

namespace OrvTest {

/// Where a check and the loader disagree about a model, in words; empty where they agree.
///
/// The loader's outcome is what it puts on the GPU. How many faces are behind that cannot be seen
/// there: the reference implementation counts them, which shares no code with either.
/// An OpenGL context has to be current.
std::vector<std::string> disagreements(const QString &fileName);

} // namespace OrvTest
